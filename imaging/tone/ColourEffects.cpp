#include "imaging/tone/ColourEffects.h"

#include <algorithm>
#include <numbers>

#include "imaging/tone/LevelTable.h"
#include "imaging/tone/Luma.h"

namespace kadrona::imaging {

namespace {

constexpr double FullLevel = 255;
constexpr int LargestSetting = 100;
constexpr QRgb AlphaMask = 0xff000000;

/// -1 ... 1
double Share(int setting) {
    return std::clamp(setting, -LargestSetting, LargestSetting) / double{LargestSetting};
}

class TableEffect : public PixelFilter {
 public:
    explicit TableEffect(const ChannelTables& tables) : tables_(tables) {
        for (size_t level = 0; level < shifted_.red.size(); ++level) {
            shifted_.red[level] = QRgb{tables.red[level]} << 16;
            shifted_.green[level] = QRgb{tables.green[level]} << 8;
            shifted_.blue[level] = tables.blue[level];
        }
    }

    void Apply(std::span<QRgb> pixels) const override {
        for (QRgb& pixel : pixels) {
            pixel = (pixel & AlphaMask) | shifted_.red[(pixel >> 16) & 0xff] |
                    shifted_.green[(pixel >> 8) & 0xff] | shifted_.blue[pixel & 0xff];
        }
    }

    /// The effect of this one and the other after it in one.
    ChannelTables FollowedBy(const TableEffect& next) const {
        ChannelTables both;
        for (size_t level = 0; level < both.red.size(); ++level) {
            both.red[level] = next.tables_.red[tables_.red[level]];
            both.green[level] = next.tables_.green[tables_.green[level]];
            both.blue[level] = next.tables_.blue[tables_.blue[level]];
        }
        return both;
    }

 private:
    /// Each entry where its channel stands in a pixel.
    struct ShiftedTables {
        std::array<QRgb, 256> red;
        std::array<QRgb, 256> green;
        std::array<QRgb, 256> blue;
    };

    ChannelTables tables_;
    ShiftedTables shifted_;
};

class GreyEffect : public PixelFilter {
 public:
    void Apply(std::span<QRgb> pixels) const override {
        for (QRgb& pixel : pixels) {
            pixel = (pixel & AlphaMask) | (static_cast<QRgb>(Luma(pixel)) * 0x010101);
        }
    }
};

/// Adds to all channels what stands in the table for the pixel's luma.
class LumaShiftEffect : public PixelFilter {
 public:
    using Shifts = std::array<int, 256>;

    explicit LumaShiftEffect(const Shifts& shifts) : shifts_(shifts) {}

    void Apply(std::span<QRgb> pixels) const override {
        for (QRgb& pixel : pixels) {
            const int shift = shifts_[static_cast<size_t>(Luma(pixel))];
            const auto shifted = [&](int channel) {
                return static_cast<QRgb>(std::clamp(channel + shift, 0, 255));
            };
            pixel = (pixel & AlphaMask) | shifted(qRed(pixel)) << 16 | shifted(qGreen(pixel)) << 8 |
                    shifted(qBlue(pixel));
        }
    }

 private:
    Shifts shifts_;
};

class SequenceEffect : public PixelFilter {
 public:
    explicit SequenceEffect(std::vector<PixelFilterPointer> filters)
        : filters_(std::move(filters)) {}

    void Apply(std::span<QRgb> pixels) const override {
        for (const PixelFilterPointer& filter : filters_) {
            filter->Apply(pixels);
        }
    }

 private:
    std::vector<PixelFilterPointer> filters_;
};

LevelTable ScaledTable(double factor) {
    return MakeTable([&](double level) { return level * factor; });
}

LevelTable StretchedTable(const LevelCounts& counts) {
    const auto isUsed = [](std::uint64_t count) { return count > 0; };
    const auto* const first = std::find_if(counts.begin(), counts.end(), isUsed);
    const auto last = std::find_if(counts.rbegin(), counts.rend(), isUsed);
    const auto lowest = static_cast<double>(first - counts.begin());
    const double highest = FullLevel - static_cast<double>(last - counts.rbegin());
    if (lowest >= highest) {
        return MakeTable([](double level) { return level; });
    }
    return MakeTable(
        [&](double level) { return (level - lowest) * FullLevel / (highest - lowest); });
}

/// The level that makes the levels' sums grow evenly (R. Gonzalez and R. Woods, "Digital Image
/// Processing", section on histogram equalization), the lowest used one becoming 0.
LevelTable EqualisedTable(const LevelCounts& counts) {
    LevelTable table = MakeTable([](double level) { return level; });
    std::uint64_t total = 0;
    std::uint64_t lowest = 0;
    for (const std::uint64_t count : counts) {
        lowest = total == 0 ? count : lowest;
        total += count;
    }
    if (total == lowest) {
        return table;
    }
    std::uint64_t sum = 0;
    for (size_t level = 0; level < counts.size(); ++level) {
        sum += counts[level];
        const double above = sum > lowest ? static_cast<double>(sum - lowest) : 0;
        table[level] = ToLevel(above * FullLevel / static_cast<double>(total - lowest));
    }
    return table;
}

}  // namespace

PixelFilterPointer TableFilter(const ChannelTables& tables) {
    return std::make_shared<TableEffect>(tables);
}

PixelFilterPointer GreyFilter() {
    return std::make_shared<GreyEffect>();
}

PixelFilterPointer WhitePointFilter(QRgb sample) {
    const double brightest = std::max({qRed(sample), qGreen(sample), qBlue(sample), 1});
    const auto table = [&](int channel) { return ScaledTable(brightest / std::max(channel, 1)); };
    return TableFilter({table(qRed(sample)), table(qGreen(sample)), table(qBlue(sample))});
}

PixelFilterPointer GainAndOffsetFilter(const Histogram& histogram) {
    return TableFilter({StretchedTable(histogram.red), StretchedTable(histogram.green),
                        StretchedTable(histogram.blue)});
}

PixelFilterPointer ContrastFilter(const ContrastAdjustment& adjustment) {
    constexpr double Middle = FullLevel / 2;
    // The steepest slope, as a tangent, is finite: one level below full contrast.
    const double contrast = std::min(Share(adjustment.contrast), 0.99);
    const double slope = std::tan((contrast + 1) * std::numbers::pi / 4);
    const double brightness = Share(adjustment.brightness) / 2;
    const LevelTable table = MakeTable([&](double level) {
        const double target = brightness < 0 ? 0 : FullLevel;
        const double brightened = level + (target - level) * std::abs(brightness);
        return (brightened - Middle) * slope + Middle;
    });
    return TableFilter({table, table, table});
}

PixelFilterPointer BalanceFilter(const BalanceAdjustment& adjustment) {
    const auto table = [](int setting) {
        return MakeTable([&](double level) { return level + Share(setting) * FullLevel / 2; });
    };
    return TableFilter({table(adjustment.red), table(adjustment.green), table(adjustment.blue)});
}

PixelFilterPointer EqualisationFilter(const Histogram& histogram, int percent) {
    const LevelTable equalised = EqualisedTable(histogram.luma);
    LumaShiftEffect::Shifts shifts;
    for (size_t level = 0; level < shifts.size(); ++level) {
        const int change = equalised[level] - static_cast<int>(level);
        shifts[level] = qRound(change * std::clamp(percent, 0, LargestSetting) / 100.0);
    }
    return std::make_shared<LumaShiftEffect>(shifts);
}

PixelFilterPointer Sequence(const std::vector<PixelFilterPointer>& filters) {
    std::vector<PixelFilterPointer> merged;
    for (const PixelFilterPointer& filter : filters) {
        if (!filter) {
            continue;
        }
        const auto* tables = dynamic_cast<const TableEffect*>(filter.get());
        const auto* before =
            merged.empty() ? nullptr : dynamic_cast<const TableEffect*>(merged.back().get());
        if (tables != nullptr && before != nullptr) {
            merged.back() = TableFilter(before->FollowedBy(*tables));
        } else {
            merged.push_back(filter);
        }
    }
    if (merged.size() <= 1) {
        return merged.empty() ? nullptr : merged.front();
    }
    return std::make_shared<SequenceEffect>(std::move(merged));
}

}  // namespace kadrona::imaging
