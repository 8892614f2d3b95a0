#pragma once

#include <QPushButton>

namespace kadrona::controls {

class ApplicationMenu;

/// The prominent button at the left of the command area. A click, Alt+H or F10 opens its menu.
class ApplicationButton : public QPushButton {
    Q_OBJECT

 public:
    /// `keyTip` is the tool tip and the accessible name. A caption beside the symbol is set with
    /// setText.
    explicit ApplicationButton(const QString& keyTip, QWidget* parent = nullptr);

    /// The menu, owned by the button. The shortcuts of its actions work while the button is
    /// visible.
    ApplicationMenu& Menu() { return *menu_; }

    /// Adds an action to the menu.
    void AddAction(QAction* action);

    void OpenMenu();

 private:
    ApplicationMenu* menu_;
};

}  // namespace kadrona::controls
