#include "imaging/tone/HueFilter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core/hal/intrin.hpp>

namespace kadrona::imaging {

namespace {

/// Four pixels at once: a number of each.
using Floats = cv::v_float32x4;
using Words = cv::v_uint32x4;
constexpr size_t Lanes = Floats::nlanes;

inline Floats All(float value) {
    return cv::v_setall_f32(value);
}

inline Floats Clamped(const Floats& value) {
    return cv::v_min(cv::v_max(value, All(0)), All(1));
}

inline Floats ChannelOf(const Words& pixels) {
    return cv::v_cvt_f32(cv::v_reinterpret_as_s32(pixels & cv::v_setall_u32(0xff)));
}

/// Levels 0 ... 255 and a half, which cutting off the rest makes a rounding.
inline Words ToChannel(const Floats& levels) {
    return cv::v_reinterpret_as_u32(cv::v_trunc(levels));
}

struct Colours {
    Floats red;
    Floats green;
    Floats blue;
};

/// In sixths of a turn, -1 ... 5; 0 for greys.
inline Floats HueOf(const Colours& colours, const Floats& highest, const Floats& chroma) {
    const Floats perChroma = All(1) / cv::v_max(chroma, All(1));
    const Floats fromRed = (colours.green - colours.blue) * perChroma;
    const Floats fromGreen = (colours.blue - colours.red) * perChroma + All(2);
    const Floats fromBlue = (colours.red - colours.green) * perChroma + All(4);
    const Floats notRed = cv::v_select(colours.green == highest, fromGreen, fromBlue);
    return cv::v_select(colours.red == highest, fromRed, notRed);
}

/// The colour of a hue, 0 ... 6, with the given chroma above its lowest channel.
inline Colours ColoursOf(const Floats& hue, const Floats& chroma, const Floats& lowest) {
    // Red's own hue is both 0 and 6: what counts is the distance from the opposite one.
    return {lowest + chroma * Clamped(cv::v_abs(hue - All(3)) - All(1)),
            lowest + chroma * Clamped(All(2) - cv::v_abs(hue - All(2))),
            lowest + chroma * Clamped(All(2) - cv::v_abs(hue - All(4)))};
}

/// The largest chroma at a lightness, 0 ... 255: twice the distance from black or white.
inline Floats RoomAt(const Floats& lightness) {
    return All(255) - cv::v_abs(lightness + lightness - All(255));
}

class HueEffect : public PixelFilter {
 public:
    explicit HueEffect(const HueAdjustment& adjustment);

    void Apply(std::span<QRgb> pixels) const override;

 private:
    Words Changed(const Words& pixels) const;

    /// In sixths of a turn, 0 ... 6.
    float turn_;
    float saturation_;
    /// The new lightness, 0 ... 255, is the old one times the gain plus the offset.
    float gain_;
    float offset_;
};

/// -1 ... 1 of a setting from -100 to 100
float PartOfFull(int setting) {
    return static_cast<float>(std::clamp(setting, -100, 100)) / 100;
}

HueEffect::HueEffect(const HueAdjustment& adjustment)
    : turn_(static_cast<float>((adjustment.hueDegrees % 360 + 360) % 360) / 60),
      saturation_(1 + PartOfFull(adjustment.saturation)),
      gain_(1 - std::abs(PartOfFull(adjustment.lightness))),
      offset_(255 * std::max(PartOfFull(adjustment.lightness), 0.0F)) {}

void HueEffect::Apply(std::span<QRgb> pixels) const {
    size_t done = 0;
    for (; done + Lanes <= pixels.size(); done += Lanes) {
        cv::v_store(&pixels[done], Changed(cv::v_load(&pixels[done])));
    }
    std::array<QRgb, Lanes> last{};
    const auto rest = pixels.subspan(done);
    std::copy(rest.begin(), rest.end(), last.begin());
    cv::v_store(last.data(), Changed(cv::v_load(last.data())));
    std::copy_n(last.begin(), rest.size(), rest.begin());
}

inline Words HueEffect::Changed(const Words& pixels) const {
    const Colours colours{ChannelOf(pixels >> 16), ChannelOf(pixels >> 8), ChannelOf(pixels)};
    const Floats highest = cv::v_max(cv::v_max(colours.red, colours.green), colours.blue);
    const Floats lowest = cv::v_min(cv::v_min(colours.red, colours.green), colours.blue);
    const Floats chroma = highest - lowest;

    const Floats turned = HueOf(colours, highest, chroma) + All(turn_);
    const Floats positive = cv::v_select(turned < All(0), turned + All(6), turned);
    const Floats hue = cv::v_select(positive >= All(6), positive - All(6), positive);

    const Floats lightness = (highest + lowest) * All(0.5F);
    const Floats saturation = chroma / cv::v_max(RoomAt(lightness), All(1));
    const Floats newLightness = lightness * All(gain_) + All(offset_);
    const Floats newChroma =
        cv::v_min(saturation * All(saturation_), All(1)) * RoomAt(newLightness);
    const Floats newLowest = newLightness - newChroma * All(0.5F) + All(0.5F);

    const Colours changed = ColoursOf(hue, newChroma, newLowest);
    return (pixels & cv::v_setall_u32(0xff000000)) | (ToChannel(changed.red) << 16) |
           (ToChannel(changed.green) << 8) | ToChannel(changed.blue);
}

}  // namespace

PixelFilterPointer HueFilter(const HueAdjustment& adjustment) {
    return std::make_shared<HueEffect>(adjustment);
}

}  // namespace kadrona::imaging
