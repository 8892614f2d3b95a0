#include "app/StartRequests.h"

#include <QApplication>
#include <QFileInfo>
#include <QWindow>
#include <utility>

#include "app/MainWindow.h"
#include "app/base/AtRest.h"
#include "app/commandline/PackedRequest.h"
#include "controls/messages/MessageBoxes.h"

using namespace Qt::StringLiterals;

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

/// What was finished while the photo waited has not even been seen yet.
bool StartRequests::MayReplaceSheet(const QString& photo) {
    const bool waited = std::exchange(hadToWait_, false);
    return photo.isEmpty() || !waited ||
           window_.Session().CurrentStage() != PhotoSession::Stage::SheetMade ||
           controls::AskYesNo(&window_,
                              u"„%1“ wartet darauf, geöffnet zu werden. Die fertigen Passbilder "
                              u"werden dann geschlossen.\n\nSoll das Foto jetzt geöffnet "
                              u"werden?"_s.arg(QFileInfo(photo).fileName()));
}

/// Dialogs over the photo can only be placed well over a window that is on the screen, and a photo
/// must not change under an open dialog or an action.
void StartRequests::Look() {
    if (!window_.windowHandle()->isExposed()) {
        return;
    }
    if (!IsAtRest()) {
        hadToWait_ = true;
        timer_.setInterval(PauseMilliseconds);
        return;
    }
    const WindowRequest request = waiting_.takeFirst();
    if (waiting_.isEmpty()) {
        timer_.stop();
    }
    if (!MayReplaceSheet(request.photo)) {
        return;
    }
    if (!request.photo.isEmpty()) {
        window_.OpenDroppedFiles({request.photo});
    } else if (request.chooses) {
        window_.Actions()[Action::Open]->trigger();
    }
}

}  // namespace kadrona::app
