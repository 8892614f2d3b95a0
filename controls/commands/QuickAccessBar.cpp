#include "controls/commands/QuickAccessBar.h"

#include <QAction>
#include <QHBoxLayout>

#include "controls/commands/LetterMenu.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

QuickAccessBar::QuickAccessBar(QWidget* parent) : QWidget(parent), layout_(new QHBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(2);
}

QMenu* QuickAccessBar::AddMenu(const QString& name, const QString& caption) {
    auto* button = new QToolButton(this);
    button->setObjectName(name + u"Button"_s);
    button->setText(caption);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto* menu = new LetterMenu(button);
    menu->setObjectName(name + u"Menu"_s);
    button->setMenu(menu);
    layout_->addWidget(button);
    return menu;
}

CommandButton* QuickAccessBar::AddAction(QAction* action) {
    auto* button = new CommandButton(action, Caption::Hidden, this);
    button->setIconSize(QSize(16, 16));
    layout_->addWidget(button);
    button->setVisible(action->isVisible());
    connect(action, &QAction::visibleChanged, button,
            [action, button] { button->setVisible(action->isVisible()); });
    addAction(action);
    return button;
}

}  // namespace kadrona::controls
