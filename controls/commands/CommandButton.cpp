#include "controls/commands/CommandButton.h"

#include <QAction>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include "controls/commands/ScreenTip.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

CommandButton::CommandButton(QAction* action, Caption caption, QWidget* parent)
    : QToolButton(parent) {
    setObjectName(action->objectName() + u"Button"_s);
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setIconSize(QSize(22, 22));
    setToolButtonStyle(caption == Caption::Shown ? Qt::ToolButtonTextBesideIcon
                                                 : Qt::ToolButtonIconOnly);
    setDefaultAction(action);
}

/// Like a push button in a window that has no default button.
void CommandButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
    } else {
        QToolButton::keyPressEvent(event);
    }
}

bool CommandButton::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || defaultAction() == nullptr) {
        return QToolButton::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), ScreenTipOf(*defaultAction()),
                       this);
    return true;
}

}  // namespace kadrona::controls
