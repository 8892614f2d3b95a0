#pragma once

#include <QByteArray>
#include <QImage>
#include <array>

namespace kadrona::imaging {

/// What the channels of decoded pixels mean. Inverted inks are stored as Adobe's programs do: 255
/// is no ink.
enum class ColourModel { Rgb, Grey, Cmyk, InvertedCmyk };

/// The chromaticities x and y of white, red, green and blue.
using PrimariesAndWhite = std::array<double, 8>;
inline constexpr PrimariesAndWhite SrgbPrimaries{0.3127, 0.3290, 0.64, 0.33,
                                                 0.30,   0.60,   0.15, 0.06};

/// An ICC profile of these primaries and the curve x ^ `gamma`, of sRGB's curve for a gamma of 0;
/// empty where there can be none.
QByteArray PrimariesProfile(const PrimariesAndWhite& primaries, double gamma);

/// Brings pixels to sRGB in place, rows in parallel. `image` has 32 bits a pixel (the four inks for
/// a CMYK model) or is QImage::Format_RGBA64; alpha stays, a CMYK image gets opaque. Where the
/// profile is empty, broken or made for other channels, it is ignored: RGB and grey stay as they
/// are, as where it is that of sRGB, and inks are multiplied out. Conversion is by the profile's
/// perceptual table where it has one, else relative colorimetric, with black point compensation.
void ConvertToSrgb(QImage& image, ColourModel model, const QByteArray& profile);

}  // namespace kadrona::imaging
