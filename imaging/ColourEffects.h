#pragma once

#include "imaging/Curves.h"
#include "imaging/Histogram.h"
#include "imaging/PixelFilter.h"

namespace kadrona::imaging {

/// One table for each channel.
struct ChannelTables {
    LevelTable red;
    LevelTable green;
    LevelTable blue;
};

PixelFilterPointer TableFilter(const ChannelTables& tables);

/// Grey of the luma 0.299 R + 0.587 G + 0.114 B (ITU-R BT.601), rounded.
PixelFilterPointer GreyFilter();

/// White balance from a sample: each channel multiplied so that the sample becomes neutral white's
/// hue, its brightest channel kept. A sample that is black in a channel counts as 1 there.
PixelFilterPointer WhitePointFilter(QRgb sample);

/// Automatic gain and offset: stretches each channel's levels to the full range. A channel of one
/// level stays as it is.
PixelFilterPointer GainAndOffsetFilter(const Histogram& histogram);

/// What the colour dialog's pages set; all zero changes nothing.
struct ContrastAdjustment {
    int contrast = 0;    ///< -100 ... 100
    int brightness = 0;  ///< -100 ... 100
    bool operator==(const ContrastAdjustment&) const = default;
};
PixelFilterPointer ContrastFilter(const ContrastAdjustment& adjustment);

struct HueAdjustment {
    int hueDegrees = 0;  ///< -180 ... 180
    int saturation = 0;  ///< -100 ... 100
    int lightness = 0;   ///< -100 ... 100
    bool operator==(const HueAdjustment&) const = default;
};
PixelFilterPointer HueFilter(const HueAdjustment& adjustment);

struct BalanceAdjustment {
    int red = 0;    ///< -100 ... 100
    int green = 0;  ///< -100 ... 100
    int blue = 0;   ///< -100 ... 100
    bool operator==(const BalanceAdjustment&) const = default;
};
PixelFilterPointer BalanceFilter(const BalanceAdjustment& adjustment);

/// Histogram equalisation of the luma, the colours' differences kept; `percent` 0 ... 100 mixes it
/// with the picture as it is.
PixelFilterPointer EqualisationFilter(const Histogram& histogram, int percent);

/// One filter after the other; null ones are skipped. Null when none is left.
PixelFilterPointer Sequence(const std::vector<PixelFilterPointer>& filters);

}  // namespace kadrona::imaging
