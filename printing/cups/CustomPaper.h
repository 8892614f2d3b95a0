#pragma once

#include <QWidget>

#include "printing/cups/service/Driver.h"

class QDoubleSpinBox;

namespace kadrona::printing::cups {

/// The fields for a paper of the user's own size, as roll printers take it. Object names:
/// "CustomWidthBox", "CustomHeightBox".
class CustomPaper : public QWidget {
    Q_OBJECT

 public:
    explicit CustomPaper(QWidget* parent = nullptr);

    /// The driver's limits, and the size to begin with, millimetres. Emits nothing.
    void Show(const CustomSizes& limits, QSizeF millimetres);

    /// As drivers name it: "Custom.100x150mm".
    QByteArray PaperName() const;

 Q_SIGNALS:
    void Changed();

 private:
    QDoubleSpinBox* width_;
    QDoubleSpinBox* height_;
};

}  // namespace kadrona::printing::cups
