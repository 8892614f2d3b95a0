#pragma once

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// Average of each channel over a whole picture, rounded to the nearest integer, 0 ... 255; what is
/// transparent counts as black. All zero for an empty picture.
struct AverageColour {
    int red = 0;
    int green = 0;
    int blue = 0;
};

AverageColour AverageOf(const Pixels& pixels);

}  // namespace kadrona::imaging
