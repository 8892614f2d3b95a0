#pragma once

#include <QPointF>
#include <optional>

#include "imaging/face/Face.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// What light and focus of a portrait are like. Lightness is L* of CIE Lab, 0 ... 100;
/// what lies outside the photo is not measured and stays empty.
struct PortraitMeasures {
    std::optional<double> skinLightness;  ///< mean over the cheeks
    /// Percent of the cheeks or the forehead, whichever is more, that is black or burnt out in all
    /// channels.
    std::optional<double> skinClipped;
    std::optional<double> lightDifference;  ///< left cheek against right one, without sign
    /// Mean strength of the finest detail at the eyes: the standard deviation of the Laplacian of
    /// L*, at 100 pixels between the pupils.
    std::optional<double> sharpness;
    std::optional<double> redEye;  ///< percent of the pupils that is red
};

/// Measures a portrait by its face: skin and eyes where the pupils put them. The regions follow
/// OFIQ's definitions of illumination uniformity, over- and underexposure and sharpness (ISO/IEC
/// 29794-5) in simple form.
PortraitMeasures MeasurePortrait(const Pixels& photo, const Face& face);

}  // namespace kadrona::imaging
