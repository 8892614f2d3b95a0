#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

class QWidget;

namespace kadrona::dialogs {

/// Puts a window that is about to be shown over the middle of its parent, or of the screen when it
/// has none, as far as the screen has room.
void CentreOnParent(QWidget& window);

/// Puts a window that is about to be shown where it covers least of the photo that its parent's
/// window shows: beside that window where the screen has room. As CentreOnParent where there is no
/// photo.
void StandClearOfPhoto(QWidget& window);

/// The corner at which something of `size` covers least of `inSight`, where areas that lie in
/// several of them count as often; among such places one beside `owner`, and then the one nearest
/// to `owner`'s middle. It lies within `room`, as far as that is large enough.
QPoint ClearPlace(const QRect& room, const QRect& owner, const QList<QRect>& inSight, QSize size);

/// Moves a window back onto its screen, as far as that has room for it.
void MoveOntoScreen(QWidget& window);

/// The size, as far as the window's screen has room for it with a frame.
QSize WithinScreen(const QWidget& window, QSize wanted);

/// Gives a window the size that it asks for, within its screen.
void FitToScreen(QWidget& window);

}  // namespace kadrona::dialogs
