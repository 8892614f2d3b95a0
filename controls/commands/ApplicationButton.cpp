#include "controls/commands/ApplicationButton.h"

#include <QAction>
#include <QShortcut>

#include "controls/commands/ApplicationMenu.h"
#include "controls/theme/Icons.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

ApplicationButton::ApplicationButton(const QString& keyTip, QWidget* parent)
    : QPushButton(parent), menu_(new ApplicationMenu(this)) {
    setObjectName(u"ApplicationButton"_s);
    setToolTip(keyTip);
    setAccessibleName(keyTip);
    setIcon(Icon(u"menu-on-accent"_s));
    setIconSize(QSize(16, 16));
    setAutoDefault(false);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QPushButton::clicked, this, &ApplicationButton::OpenMenu);
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
