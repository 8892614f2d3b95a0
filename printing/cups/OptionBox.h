#pragma once

#include <QComboBox>

#include "printing/cups/service/Driver.h"

namespace kadrona::printing::cups {

/// A list of the choices of one option of the driver.
class OptionBox : public QComboBox {
    Q_OBJECT

 public:
    explicit OptionBox(QWidget* parent = nullptr);

    /// Shows the option's choices, with what `mode` has for it, or where that is no choice of the
    /// driver its own.
    void ShowOption(const DriverOption& option, const DeviceMode& mode);

    /// Puts the choice into `mode`.
    void Store(DeviceMode& mode) const;

 protected:
    /// Turning the wheel over a page of boxes scrolls the page and changes none of them.
    void wheelEvent(QWheelEvent* event) override;

 private:
    QByteArray keyword_;
};

}  // namespace kadrona::printing::cups
