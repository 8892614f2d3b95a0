#pragma once

#include <QRgb>
#include <optional>
#include <vector>

#include "imaging/tone/FaceSkin.h"

namespace kadrona::imaging {

/// The light of a picture.
struct SceneLight {
    Chromaticity colour;  ///< what it makes of grey
    double grey = 0;      ///< the part of the picture, 0 ... 1, that is grey once it is corrected
};

/// The likeliest light of a portrait with these pixels, none of whose channels is darker than
/// DarkestTone; nothing where that is unsure, and where what is brightest is white already.
std::optional<SceneLight> SceneLightOf(const std::vector<QRgb>& points,
                                       const std::optional<FaceSkin>& face);

}  // namespace kadrona::imaging
