#include "dialogs/base/SelfConfirmation.h"

#include <QAbstractButton>
#include <QEvent>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kadrona::dialogs {

SelfConfirmation::SelfConfirmation(QWidget& dialog, QAbstractButton& button)
    : QObject(&dialog), timer_(new QTimer(&dialog)) {
    timer_->setObjectName(u"Timer"_s);
    timer_->setInterval(500ms);
    timer_->setSingleShot(true);
    connect(timer_, &QTimer::timeout, &button, &QAbstractButton::click);
    dialog.installEventFilter(this);
    const auto children = dialog.findChildren<QWidget*>();
    for (QWidget* child : children) {
        child->installEventFilter(this);
    }
}

void SelfConfirmation::Start() {
    timer_->start();
}

void SelfConfirmation::Stop() {
    timer_->stop();
}

bool SelfConfirmation::IsRunning() const {
    return timer_->isActive();
}

bool SelfConfirmation::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
        case QEvent::MouseButtonPress:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
            if (IsRunning()) {
                Stop();
                Q_EMIT Interrupted();
            }
            break;
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::dialogs
