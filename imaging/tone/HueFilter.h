#pragma once

#include "imaging/tone/PixelFilter.h"

namespace kadrona::imaging {

/// What a page of the colour dialog sets; all zero changes nothing.
struct HueAdjustment {
    int hueDegrees = 0;  ///< -180 ... 180
    int saturation = 0;  ///< -100 ... 100
    int lightness = 0;   ///< -100 ... 100
    bool operator==(const HueAdjustment&) const = default;
};
/// In the model of hue, saturation and lightness of A. Joblove and D. Greenberg, "Color spaces for
/// computer graphics", SIGGRAPH 1978: the hue is turned, the saturation multiplied by 0 ... 2 and
/// kept within its range, the lightness moved towards black or white by the setting's part of the
/// way. Greys stay grey. Values are rounded once, in the end.
///
/// OpenCV was weighed: its conversion to this model and back rounds twice and takes three times as
/// long.
PixelFilterPointer HueFilter(const HueAdjustment& adjustment);

}  // namespace kadrona::imaging
