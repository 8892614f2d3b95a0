#include "controls/CommandButton.h"

#include <QAction>
#include <QHelpEvent>
#include <QToolTip>

#include "controls/ScreenTip.h"

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

bool CommandButton::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || defaultAction() == nullptr) {
        return QToolButton::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), ScreenTipOf(*defaultAction()),
                       this);
    return true;
}

}  // namespace kadrona::controls
