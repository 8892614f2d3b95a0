#pragma once

#include <QWidget>

#include "core/sheet/UploadFigures.h"

class QDoubleSpinBox;
class QGridLayout;

namespace kadrona::dialogs {

/// Fields for what a portal takes: the least and the most of width, height and kilobytes, 0 where
/// anything goes. Each bears the name of the setting that keeps it.
class UploadFiguresEdit : public QWidget {
    Q_OBJECT

 public:
    explicit UploadFiguresEdit(QWidget* parent = nullptr);

    core::UploadFigures Figures() const;
    void SetFigures(const core::UploadFigures& figures);

 Q_SIGNALS:
    void Changed();

 private:
    struct Range {
        QDoubleSpinBox* least;
        QDoubleSpinBox* most;
    };

    Range AddRange(QGridLayout& grid, const QString& caption, const QString& name,
                   int largest) const;

    Range width_;
    Range height_;
    Range kilobytes_;
};

}  // namespace kadrona::dialogs
