#pragma once

#include <QWidget>

#include "controls/commands/ApplicationButton.h"
#include "controls/commands/CommandBar.h"
#include "controls/commands/QuickAccessBar.h"

class QVBoxLayout;

namespace kadrona::controls {

/// The command area at the top of a main window: a strip with the application button and the
/// quick-access bar, and the command bars below. Fit for QMainWindow::setMenuWidget.
class CommandArea : public QWidget {
    Q_OBJECT

 public:
    /// `keyTip`: see ApplicationButton.
    explicit CommandArea(const QString& keyTip, QWidget* parent = nullptr);

    ApplicationButton& Application() { return *application_; }
    QuickAccessBar& QuickAccess() { return *quickAccess_; }

    /// A new bar below the ones there are, owned by the area.
    CommandBar& AddBar(const QString& title);

 private:
    ApplicationButton* application_;
    QuickAccessBar* quickAccess_;
    QVBoxLayout* layout_;
};

}  // namespace kadrona::controls
