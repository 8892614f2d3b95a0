#pragma once

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace kadrona::dialogs {

/// Moves a window that is about to show to the middle of its owner, kept on the screen.
inline void CentreOnOwner(QWidget& window) {
    const QWidget* owner = window.parentWidget();
    if (owner == nullptr) {
        return;
    }
    const QRect screen = window.screen()->availableGeometry();
    QRect place(QPoint(), window.size());
    place.moveCenter(owner->window()->frameGeometry().center());
    place.moveRight(std::min(place.right(), screen.right()));
    place.moveBottom(std::min(place.bottom(), screen.bottom()));
    window.move(std::max(place.left(), screen.left()), std::max(place.top(), screen.top()));
}

}  // namespace kadrona::dialogs
