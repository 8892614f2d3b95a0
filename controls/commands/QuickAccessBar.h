#pragma once

#include <QWidget>

#include "controls/commands/CommandButton.h"

class QHBoxLayout;
class QMenu;

namespace kadrona::controls {

/// The compact strip beside the application button: drop-down menus and single icon buttons.
class QuickAccessBar : public QWidget {
    Q_OBJECT

 public:
    explicit QuickAccessBar(QWidget* parent = nullptr);

    /// A button that drops the returned menu down; fill it with addAction and addSeparator.
    /// `caption` may hold a mnemonic ("&Datei"). Object names: `name` + "Button" and `name` +
    /// "Menu".
    QMenu* AddMenu(const QString& name, const QString& caption);

    /// An icon button that appears and disappears with its action.
    CommandButton* AddAction(QAction* action);

 private:
    QHBoxLayout* layout_;
};

}  // namespace kadrona::controls
