#pragma once

class QSize;
class QWidget;

namespace kadrona::dialogs {

/// Puts a window that is about to be shown over the middle of its parent, or of the screen when it
/// has none, as far as the screen has room.
void CentreOnParent(QWidget& window);

/// Moves a window back onto its screen, as far as that has room for it.
void MoveOntoScreen(QWidget& window);

/// The size, as far as the window's screen has room for it with a frame.
QSize WithinScreen(const QWidget& window, QSize wanted);

/// Gives a window the size that it asks for, within its screen.
void FitToScreen(QWidget& window);

}  // namespace kadrona::dialogs
