#include <algorithm>
#include <cmath>

#include "imaging/ColourEffects.h"

namespace kadrona::imaging {

namespace {

/// Floats throughout, and selections instead of branches, so that the compiler handles several
/// pixels at once.
class HueEffect : public PixelFilter {
 public:
    explicit HueEffect(const HueAdjustment& adjustment);

    void Apply(std::span<QRgb> pixels) const override {
        for (QRgb& pixel : pixels) {
            pixel = Changed(pixel);
        }
    }

 private:
    QRgb Changed(QRgb pixel) const;

    /// In sixths of a turn, 0 ... 6.
    float turn_;
    float saturation_;
    /// The new lightness, 0 ... 255, is the old one times the gain plus the offset.
    float gain_;
    float offset_;
};

float Share(int setting) {
    return static_cast<float>(std::clamp(setting, -100, 100)) / 100;
}

HueEffect::HueEffect(const HueAdjustment& adjustment)
    : turn_(static_cast<float>((adjustment.hueDegrees % 360 + 360) % 360) / 60),
      saturation_(1 + Share(adjustment.saturation)),
      gain_(1 - std::abs(Share(adjustment.lightness))),
      offset_(255 * std::max(Share(adjustment.lightness), 0.0F)) {}

/// 0 ... 1: how far a channel stands above the lowest one at a distance in sixths of a turn of the
/// hue from the channel's own, in parts of the chroma.
inline float Weight(float distance) {
    return std::min(std::max(2 - distance, 0.0F), 1.0F);
}

inline QRgb HueEffect::Changed(QRgb pixel) const {
    const auto red = static_cast<float>(static_cast<int>((pixel >> 16) & 0xff));
    const auto green = static_cast<float>(static_cast<int>((pixel >> 8) & 0xff));
    const auto blue = static_cast<float>(static_cast<int>(pixel & 0xff));
    const float highest = std::max(std::max(red, green), blue);
    const float lowest = std::min(std::min(red, green), blue);
    const float chroma = highest - lowest;

    const float perChroma = 1 / std::max(chroma, 1.0F);
    const float fromRed = (green - blue) * perChroma;
    const float fromGreen = (blue - red) * perChroma + 2;
    const float fromBlue = (red - green) * perChroma + 4;
    const float notRed = green == highest ? fromGreen : fromBlue;
    float hue = (red == highest ? fromRed : notRed) + turn_;
    hue = hue < 0 ? hue + 6 : hue;
    hue = hue >= 6 ? hue - 6 : hue;

    // The largest chroma at a lightness is twice the distance from black or white.
    const float lightness = (highest + lowest) / 2;
    const float room = std::max(255 - std::abs(2 * lightness - 255), 1.0F);
    const float newLightness = lightness * gain_ + offset_;
    const float newRoom = 255 - std::abs(2 * newLightness - 255);
    const float newChroma = std::min(chroma / room * saturation_, 1.0F) * newRoom;
    const float floor = newLightness - newChroma / 2 + 0.5F;

    // Red's own hue is both 0 and 6: what counts is the distance from the opposite one.
    const float redWeight = std::min(std::max(std::abs(hue - 3) - 1, 0.0F), 1.0F);
    const int newRed = static_cast<int>(floor + newChroma * redWeight);
    const int newGreen = static_cast<int>(floor + newChroma * Weight(std::abs(hue - 2)));
    const int newBlue = static_cast<int>(floor + newChroma * Weight(std::abs(hue - 4)));
    return (pixel & 0xff000000) | static_cast<QRgb>(newRed << 16) |
           static_cast<QRgb>(newGreen << 8) | static_cast<QRgb>(newBlue);
}

}  // namespace

PixelFilterPointer HueFilter(const HueAdjustment& adjustment) {
    return std::make_shared<HueEffect>(adjustment);
}

}  // namespace kadrona::imaging
