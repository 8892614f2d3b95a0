#pragma once

#include <QRgb>
#include <optional>
#include <vector>

#include "imaging/tone/FaceSkin.h"

namespace kadrona::imaging {

/// Complexions differ: of a light that no grey settles, so much is to be corrected.
constexpr double PartBySkin = 0.82;

/// The light of a picture.
struct SceneLight {
    /// Where so much of the picture is grey it settles the light.
    static constexpr double GreyThatSettles = 0.1;

    Chromaticity colour;  ///< what it makes of grey
    double grey = 0;      ///< the part of the picture, 0 ... 1, that is grey once it is corrected

    bool IsSettled() const { return grey >= GreyThatSettles; }
};

/// The likeliest light of a portrait with these pixels, none of whose channels is darker than
/// DarkestTone; nothing where that is unsure, and where what is brightest is white already.
std::optional<SceneLight> SceneLightOf(const std::vector<QRgb>& points,
                                       const std::optional<FaceSkin>& face);

}  // namespace kadrona::imaging
