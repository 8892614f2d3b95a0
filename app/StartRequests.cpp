#include "app/StartRequests.h"

#include <QApplication>
#include <QWindow>
#include <utility>

#include "app/AtRest.h"
#include "app/MainWindow.h"

namespace kadrona::app {

namespace {

constexpr int WaitMilliseconds = 10;

void BringToFront(QWidget& window, const QByteArray& token) {
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token);  // the toolkit takes it from there
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
    QApplication::alert(&window);
}

}  // namespace

StartRequests::StartRequests(TmainFm& window) : window_(window) {
    timer_.setInterval(WaitMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &StartRequests::Look);
}

void StartRequests::Ask(const WindowRequest& request) {
    waiting_ = request;
    timer_.start();
}

void StartRequests::AskFromOutside(const QByteArray& bytes) {
    if (const auto request = Unpacked(bytes)) {
        BringToFront(window_, request->activationToken);
        if (request->chooses || !request->photo.isEmpty()) {
            Ask(*request);
        }
    }
}

/// Dialogs over the photo can only be placed well over a window that is on the screen, and a photo
/// must not change under an open dialog or an action.
void StartRequests::Look() {
    if (!IsAtRest() || !window_.windowHandle()->isExposed()) {
        return;
    }
    timer_.stop();
    if (const auto request = std::exchange(waiting_, std::nullopt)) {
        if (!request->photo.isEmpty()) {
            window_.OpenDroppedFiles({request->photo});
        } else if (request->chooses) {
            window_.Actions()[Action::Open]->trigger();
        }
    }
}

}  // namespace kadrona::app
