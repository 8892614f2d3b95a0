#include "app/StartRequests.h"

#include <QApplication>
#include <QWindow>

#include "app/MainWindow.h"
#include "app/base/AtRest.h"

namespace kadrona::app {

namespace {

/// Until the window is on the screen, and then while something else is under way.
constexpr int WindowMilliseconds = 10;
constexpr int PauseMilliseconds = 200;

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
    connect(&timer_, &QTimer::timeout, this, &StartRequests::Look);
}

void StartRequests::Ask(const WindowRequest& request) {
    waiting_.append(request);
    timer_.start(WindowMilliseconds);
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
    if (!window_.windowHandle()->isExposed()) {
        return;
    }
    if (!IsAtRest()) {
        timer_.setInterval(PauseMilliseconds);
        return;
    }
    const WindowRequest request = waiting_.takeFirst();
    if (waiting_.isEmpty()) {
        timer_.stop();
    }
    if (!request.photo.isEmpty()) {
        window_.OpenDroppedFiles({request.photo});
    } else if (request.chooses) {
        window_.Actions()[Action::Open]->trigger();
    }
}

}  // namespace kadrona::app
