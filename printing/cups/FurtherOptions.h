#pragma once

#include <QWidget>
#include <functional>

#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"

class QScrollArea;
class QToolButton;

namespace kadrona::printing::cups {

/// All other options of the driver by name, folded away until the user wants them. Object names:
/// "FurtherOptionsButton", "FurtherOptionsArea"; each box bears its option's keyword.
class FurtherOptions : public QWidget {
    Q_OBJECT

 public:
    explicit FurtherOptions(QWidget* parent = nullptr);

    /// Shows the options that `isShownElsewhere` does not claim. Driver and mode outlive the widget
    /// or the next call.
    void ShowMode(const Driver& driver, DeviceMode& mode,
                  const std::function<bool(const QByteArray&)>& isShownElsewhere);

 Q_SIGNALS:
    /// The user changed the mode.
    void ModeChanged();
    /// The list was opened or closed.
    void Toggled();

 private:
    QToolButton* button_;
    QScrollArea* area_;
};

}  // namespace kadrona::printing::cups
