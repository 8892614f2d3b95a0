#pragma once

class QWidget;

namespace kadrona::dialogs {

/// Puts a window that is about to be shown over the middle of its parent, or of the screen when it
/// has none, as far as the screen has room.
void CentreOnParent(QWidget& window);

/// Gives a window the size that it asks for, as far as the screen has room for it with its frame.
void FitToScreen(QWidget& window);

}  // namespace kadrona::dialogs
