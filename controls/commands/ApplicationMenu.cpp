#include "controls/commands/ApplicationMenu.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "controls/commands/LetterMenu.h"
#include "controls/commands/MenuRow.h"
#include "controls/commands/Separator.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

ApplicationMenu::ApplicationMenu(QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint) {
    setObjectName(u"ApplicationMenu"_s);
    auto* column = new QWidget(this);
    entries_ = new QVBoxLayout(column);
    entries_->setContentsMargins(6, 6, 6, 6);
    entries_->setSpacing(1);
    entries_->addStretch();

    auto* middle = new QHBoxLayout;
    middle->setSpacing(0);
    middle->addWidget(column, 1);
    middle->addWidget(MakeSidePane());

    auto* foot = new QFrame(this);
    foot->setObjectName(u"MenuFoot"_s);
    auto* footLayout = new QHBoxLayout(foot);
    footLayout->setContentsMargins(8, 8, 8, 8);
    footLayout->addStretch();
    footButton_ = new QPushButton(foot);
    footButton_->setAutoDefault(false);
    footButton_->hide();
    footButton_->installEventFilter(this);
    footLayout->addWidget(footButton_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    layout->addLayout(middle, 1);
    layout->addWidget(foot);
}

QWidget* ApplicationMenu::MakeSidePane() {
    auto* pane = new QFrame(this);
    pane->setObjectName(u"MenuSidePane"_s);
    pane->setFixedWidth(260);
    heading_ = new QLabel(pane);
    heading_->setObjectName(u"MenuHeading"_s);
    heading_->setTextFormat(Qt::PlainText);
    description_ = new QLabel(pane);
    description_->setObjectName(u"MenuDescription"_s);
    description_->setTextFormat(Qt::PlainText);
    description_->setWordWrap(true);
    description_->hide();
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->setSpacing(8);
    layout->addWidget(heading_);
    layout->addWidget(description_);
    layout->addStretch();
    return pane;
}

void ApplicationMenu::AddAction(QAction* action) {
    auto* row = new MenuRow(action, this);
    row->installEventFilter(this);
    connect(row, &QAbstractButton::clicked, this, [this, action] { CloseAndTrigger(action); });
    entries_->insertWidget(entries_->count() - 1, row);  // before the stretch
}

void ApplicationMenu::AddSeparator() {
    entries_->insertWidget(entries_->count() - 1, new Separator(Qt::Horizontal, this));
}

void ApplicationMenu::SetSidePane(const QString& heading, const QString& description) {
    heading_->setText(heading);
    description_->setText(description);
    description_->setVisible(!description.isEmpty());
}

void ApplicationMenu::SetFootAction(QAction* action) {
    footButton_->disconnect();
    footButton_->setObjectName(action->objectName() + u"FootButton"_s);
    const auto follow = [this, action] {
        footButton_->setText(action->text());
        footButton_->setIcon(action->icon());
        footButton_->setEnabled(action->isEnabled());
        footButton_->setVisible(action->isVisible());
    };
    connect(action, &QAction::changed, footButton_, follow);
    connect(footButton_, &QPushButton::clicked, this, [this, action] { CloseAndTrigger(action); });
    follow();
}

void ApplicationMenu::PopUp(const QWidget& anchor) {
    ensurePolished();
    resize(sizeHint());  // adjustSize would cut the captions on a small screen
    QPoint position = anchor.mapToGlobal(QPoint(0, anchor.height()));
    if (const QScreen* screen = anchor.screen()) {
        const QRect room = screen->availableGeometry();
        position.setX(std::clamp(position.x(), room.left(),
                                 std::max(room.left(), room.right() + 1 - width())));
        position.setY(std::clamp(position.y(), room.top(),
                                 std::max(room.top(), room.bottom() + 1 - height())));
    }
    // A click on the anchor closes the menu; replayed, it would open it again.
    setAttribute(Qt::WA_NoMouseReplay);
    move(position);
    show();
    FocusEnd(false);
}

QList<QWidget*> ApplicationMenu::Stops() const {
    QList<QWidget*> stops;
    for (int i = 0; i < entries_->count(); ++i) {
        auto* row = qobject_cast<MenuRow*>(entries_->itemAt(i)->widget());
        if (row != nullptr && row->isVisible() && row->isEnabled()) {
            stops.append(row);
        }
    }
    if (footButton_->isVisible() && footButton_->isEnabled()) {
        stops.append(footButton_);
    }
    return stops;
}

void ApplicationMenu::MoveFocus(int step) {
    const QList<QWidget*> stops = Stops();
    if (stops.isEmpty()) {
        return;
    }
    const qsizetype count = stops.size();
    const qsizetype current = stops.indexOf(focusWidget());
    const qsizetype next = current < 0 ? 0 : (current + step + count) % count;
    stops[next]->setFocus(Qt::TabFocusReason);
}

void ApplicationMenu::FocusEnd(bool last) {
    const QList<QWidget*> stops = Stops();
    if (!stops.isEmpty()) {
        (last ? stops.last() : stops.first())->setFocus(Qt::TabFocusReason);
    }
}

void ApplicationMenu::JumpTo(QChar letter) {
    const QList<QWidget*> stops = Stops();
    const qsizetype count = stops.size();
    const qsizetype current = stops.indexOf(focusWidget());
    for (qsizetype i = 1; i <= count; ++i) {
        auto* button = qobject_cast<QAbstractButton*>(stops[(current + i) % count]);
        if (CaptionLetter(button->text()) == letter.toUpper()) {
            button->setFocus(Qt::ShortcutFocusReason);
            return;
        }
    }
}

void ApplicationMenu::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
        case Qt::Key_F10:
            hide();
            break;
        case Qt::Key_Up:
            MoveFocus(-1);
            break;
        case Qt::Key_Down:
            MoveFocus(1);
            break;
        case Qt::Key_Home:
            FocusEnd(false);
            break;
        case Qt::Key_End:
            FocusEnd(true);
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Trigger();
            break;
        default:
            if (!event->text().isEmpty()) {
                JumpTo(event->text().front());
            }
    }
}

// Buttons take arrow keys for moves of their own; here all keys but the ones that press a button or
// go through the focus chain are the menu's.
bool ApplicationMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* keyEvent = static_cast<QKeyEvent*>(event);
        const int key = keyEvent->key();
        if (key != Qt::Key_Space && key != Qt::Key_Tab && key != Qt::Key_Backtab) {
            keyPressEvent(keyEvent);
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void ApplicationMenu::Trigger() {
    if (auto* button = qobject_cast<QAbstractButton*>(focusWidget())) {
        button->click();
    }
}

void ApplicationMenu::CloseAndTrigger(QAction* action) {
    hide();
    action->trigger();
}

}  // namespace kadrona::controls
