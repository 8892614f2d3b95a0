#pragma once

class QLineEdit;

namespace kadrona::controls {

/// Gives a field a button that empties it. Unlike the toolkit's own it has a name for screen
/// readers, and inks that follow the appearance.
void AddClearButton(QLineEdit& edit);

}  // namespace kadrona::controls
