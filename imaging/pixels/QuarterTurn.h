#pragma once

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

enum class QuarterTurn { CounterClockwise, Clockwise };

/// Turned by 90 degrees without any loss; a grid of tiles stays one. Throws platform::Error
/// where memory is short.
Pixels Turned(const Pixels& pixels, QuarterTurn turn);

}  // namespace kadrona::imaging
