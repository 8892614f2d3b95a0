#include "dialogs/base/WindowPlacement.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace kadrona::dialogs {

namespace {

/// Room for the system's frame, which is known only once a window is shown.
constexpr QSize Frame(16, 48);

/// To the corner, or as near to it as the window with its frame lies in `room`.
void MoveWithin(const QRect& room, QWidget& window, QPoint corner) {
    const auto within = [](int place, int first, int last) {
        return std::max(first, std::min(place, last));
    };
    window.move(within(corner.x(), room.left(), room.right() - window.width() - Frame.width()),
                within(corner.y(), room.top(), room.bottom() - window.height() - Frame.height()));
}

}  // namespace

void CentreOnParent(QWidget& window) {
    const QWidget* parent = window.parentWidget();
    const QScreen* screen = (parent != nullptr ? *parent : window).screen();
    const QRect room = screen->availableGeometry();
    const QRect owner = parent != nullptr ? parent->window()->frameGeometry() : room;
    const QPoint corner = owner.center() - window.rect().center();
    MoveWithin(room, window, corner);
}

void MoveOntoScreen(QWidget& window) {
    MoveWithin(window.screen()->availableGeometry(), window, window.pos());
}

QSize WithinScreen(const QWidget& window, QSize wanted) {
    return wanted.boundedTo(window.screen()->availableSize() - Frame);
}

void FitToScreen(QWidget& window) {
    window.ensurePolished();
    window.resize(WithinScreen(window, window.sizeHint()));
}

}  // namespace kadrona::dialogs
