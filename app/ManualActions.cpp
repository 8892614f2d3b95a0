#include "app/ManualActions.h"

#include <QApplication>
#include <QKeyEvent>
#include <memory>
#include <utility>

#include "app/base/MainActions.h"
#include "controls/messages/ActionGuard.h"
#include "dialogs/ManualWindow.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

ManualActions::ManualActions(QWidget& window, QString programFolder, MainActions& actions)
    : window_(window), programFolder_(std::move(programFolder)) {
    actions.Connect(Action::Manual, this, [this] { Show(); });
    qApp->installEventFilter(this);
}

/// Shortcuts of actions do not reach a window that a dialog keeps from input.
bool ManualActions::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || QApplication::activeModalWidget() == nullptr) {
        return QObject::eventFilter(watched, event);
    }
    const auto& key = static_cast<QKeyEvent&>(*event);
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier || !watched->isWidgetType()) {
        return false;
    }
    controls::Guarded(QApplication::activeModalWidget(), [this] { Show(); });
    return true;
}

void ManualActions::Show() {
    // Only a dialog's own child gets input beside it, and goes with it.
    QWidget* dialog = QApplication::activeModalWidget();
    if (manual_ && dialog != nullptr && manual_->parentWidget() != dialog) {
        delete manual_;
    }
    if (!manual_) {
        auto manual = std::make_unique<dialogs::ManualWindow>(dialog ? dialog : &window_);
        manual->Load(platform::DeliveredFolder(programFolder_, u"Handbuch"_s));
        manual_ = manual.release();
    }
    manual_->show();
    manual_->raise();
    manual_->activateWindow();
}

}  // namespace kadrona::app
