#pragma once

#include <QImage>
#include <QRect>
#include <optional>

namespace kadrona::imaging {

/// Red over green and blue over green, as natural logarithms.
struct Chromaticity {
    double red = 0;
    double blue = 0;
};

/// Below this, of 255, a channel is mostly noise and says nothing about the light. White that is
/// clipped counts: it is to stay white.
constexpr int DarkestTone = 16;

/// The middle of a face's skin, its noise and its lips aside.
struct FaceSkin {
    Chromaticity colour;
    double green = 0;  ///< 0 ... 255
};

/// Of the part of the picture, in pixels of straight RGB, that is skin. None where too little of it
/// can be seen.
std::optional<FaceSkin> FaceSkinIn(const QImage& image, const QRect& area);

/// How likely a face has that skin once a light is corrected which makes grey to `light`, 0 ... 1.
double LikenessToFace(const FaceSkin& skin, const Chromaticity& light);

}  // namespace kadrona::imaging
