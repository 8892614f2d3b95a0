#include "dialogs/WindowPlacement.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace kadrona::dialogs {

void CentreOnParent(QWidget& window) {
    const QWidget* parent = window.parentWidget();
    const QScreen* screen = (parent != nullptr ? *parent : window).screen();
    const QRect room = screen->availableGeometry();
    const QRect owner = parent != nullptr ? parent->window()->frameGeometry() : room;
    const QPoint corner = owner.center() - window.rect().center();
    const auto within = [](int place, int first, int last) {
        return std::max(first, std::min(place, last));
    };
    window.move(within(corner.x(), room.left(), room.right() - window.width()),
                within(corner.y(), room.top(), room.bottom() - window.height()));
}

void FitToScreen(QWidget& window) {
    constexpr QSize Frame(16, 48);  // the system's own is known only once the window is shown
    window.ensurePolished();
    window.resize(window.sizeHint().boundedTo(window.screen()->availableSize() - Frame));
}

}  // namespace kadrona::dialogs
