#include "dialogs/WindowPlacement.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace kadrona::dialogs {

namespace {

/// Room for the system's frame, which is known only once a window is shown.
constexpr QSize Frame(16, 48);

const QScreen& ScreenOf(const QWidget& window) {
    const QWidget* parent = window.parentWidget();
    return *(parent != nullptr ? *parent : window).screen();
}

/// The place nearest to `corner` at which the window lies on its screen.
QPoint OnScreen(const QWidget& window, QPoint corner) {
    const QRect room = ScreenOf(window).availableGeometry();
    const auto within = [](int place, int first, int last) {
        return std::max(first, std::min(place, last));
    };
    return {within(corner.x(), room.left(), room.right() - window.width() - Frame.width()),
            within(corner.y(), room.top(), room.bottom() - window.height() - Frame.height())};
}

}  // namespace

void CentreOnParent(QWidget& window) {
    const QWidget* parent = window.parentWidget();
    const QRect room = ScreenOf(window).availableGeometry();
    const QRect owner = parent != nullptr ? parent->window()->frameGeometry() : room;
    window.move(OnScreen(window, owner.center() - window.rect().center()));
}

void MoveOntoScreen(QWidget& window) {
    window.move(OnScreen(window, window.pos()));
}

QSize WithinScreen(const QWidget& window, QSize wanted) {
    return wanted.boundedTo(window.screen()->availableSize() - Frame);
}

void FitToScreen(QWidget& window) {
    window.ensurePolished();
    window.resize(WithinScreen(window, window.sizeHint()));
}

}  // namespace kadrona::dialogs
