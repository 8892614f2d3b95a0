#pragma once

#include <QCursor>

namespace kadrona::controls {

/// A pipette; its tip is the hot spot.
QCursor PipetteCursor();

/// Cross-hairs with a stamp beside them; their middle is the hot spot.
QCursor StampCursor();

}  // namespace kadrona::controls
