#pragma once

#include <vector>

#include "imaging/tone/Histogram.h"
#include "imaging/tone/LevelTable.h"
#include "imaging/tone/PixelFilter.h"

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
/// hue, its brightest channel kept: raised to 255, a grey wall would burn out the face before it. A
/// sample that is black in a channel counts as 1 there.
PixelFilterPointer WhitePointFilter(QRgb sample);

/// Automatic gain and offset: stretches each channel's levels to the full range, the lowest used
/// one becoming 0 and the highest 255. Every used level counts, however rare, so that nothing is
/// clipped: white clothes and hair keep their detail. A channel of one level stays as it is.
PixelFilterPointer GainAndOffsetFilter(const Histogram& histogram);

/// What a page of the colour dialog sets; all zero changes nothing, as with those below.
struct ContrastAdjustment {
    int contrast = 0;    ///< -100 ... 100
    int brightness = 0;  ///< -100 ... 100
    bool operator==(const ContrastAdjustment&) const = default;
};
/// Brightness comes first: it moves each level towards black or white, at full setting by half the
/// way. Contrast then turns the line through the middle level, by up to 45 degrees: to level at
/// -100, to nearly upright at 100.
PixelFilterPointer ContrastFilter(const ContrastAdjustment& adjustment);

struct BalanceAdjustment {
    int red = 0;    ///< -100 ... 100
    int green = 0;  ///< -100 ... 100
    int blue = 0;   ///< -100 ... 100
    bool operator==(const BalanceAdjustment&) const = default;
};
/// Adds to each channel, at full setting half of the range.
PixelFilterPointer BalanceFilter(const BalanceAdjustment& adjustment);

/// Histogram equalisation of the luma, the colours' differences kept: a pixel's channels all move
/// as far as its luma, within 0 ... 255. `percent` 0 ... 100 mixes it with the picture as it is.
PixelFilterPointer EqualisationFilter(const Histogram& histogram, int percent);

/// One filter after the other; null ones are skipped. Null when none is left. Tables that follow
/// each other become one.
PixelFilterPointer Sequence(const std::vector<PixelFilterPointer>& filters);

}  // namespace kadrona::imaging
