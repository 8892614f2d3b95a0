#pragma once

#include <QRect>
#include <optional>

#include "imaging/face/Face.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// What the wall behind a head is like. Lightness is L* of CIE Lab, 0 ... 100; empty where the
/// picture has no room beside the head.
struct BackgroundMeasures {
    std::optional<double> lightness;
    std::optional<double> spread;  ///< standard deviation, CIE Lab units
    std::optional<double> chroma;
    /// How much darker a quarter of the background is than the lightest one: shadows.
    std::optional<double> shadow;
};

/// Measures the background beside the head, above the shoulders, inside `cut` (photo pixels): what
/// is cut off is not handed in. Where the cut is empty, near the head in the whole photo. Reads a
/// few thousand pixels however large the photo is, so that each frame of a drag can measure. Throws
/// platform::Error where memory is short.
BackgroundMeasures MeasureBackground(const Pixels& photo, const Face& face, const QRect& cut);

}  // namespace kadrona::imaging
