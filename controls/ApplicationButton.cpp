#include "controls/ApplicationButton.h"

#include <QAction>
#include <QShortcut>

#include "controls/ApplicationMenu.h"
#include "controls/Icons.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

ApplicationButton::ApplicationButton(const QString& keyTip, QWidget* parent)
    : QToolButton(parent), menu_(new ApplicationMenu(this)) {
    setObjectName(u"ApplicationButton"_s);
    setToolTip(keyTip);
    setAccessibleName(keyTip);
    setIcon(Icon(u"menu"_s));
    setIconSize(QSize(16, 16));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QToolButton::clicked, this, &ApplicationButton::OpenMenu);
    for (const QKeySequence& keys :
         {QKeySequence(Qt::ALT | Qt::Key_H), QKeySequence(Qt::Key_F10)}) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, &ApplicationButton::OpenMenu);
    }
}

void ApplicationButton::AddAction(QAction* action) {
    menu_->AddAction(action);
    addAction(action);
}

void ApplicationButton::OpenMenu() {
    menu_->PopUp(*this);
}

}  // namespace kadrona::controls
