#include "imaging/pixels/Resampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <opencv2/core/utility.hpp>
#include <span>
#include <vector>

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

constexpr int Channels = 4;
constexpr int One = 256;

using SourceRows = std::vector<const uchar*>;

/// Floating point, for pictures that are kept.
struct ExactArithmetic {
    using Weight = float;
    using Mixed = float;

    static std::vector<Weight> WeightsOf(const AxisTaps& axis) { return axis.weights; }
    static void MixRows(const SourceRows& rows, const Weight* weights, std::span<Mixed> mixed);
    static void MixColumns(std::span<const Mixed> mixed, const AxisTaps& columns,
                           const Weight* weights, quint32* target);
};

void ExactArithmetic::MixRows(const SourceRows& rows, const Weight* weights,
                              std::span<Mixed> mixed) {
    std::ranges::fill(mixed, 0.0F);
    for (const uchar* row : rows) {
        const Weight weight = *weights++;
        for (size_t i = 0; i < mixed.size(); ++i) {
            mixed[i] += weight * static_cast<float>(row[i]);
        }
    }
}

/// A negative weight may lead outside of what a channel holds; premultiplied, no colour may exceed
/// its alpha, which stands last.
void StorePixel(const std::array<float, Channels>& sums, uchar* pixel) {
    float limit = 255;
    for (int channel = Channels - 1; channel >= 0; --channel) {
        const float value = std::clamp(sums[static_cast<size_t>(channel)], 0.0F, limit);
        pixel[channel] = static_cast<uchar>(std::lround(value));
        limit = channel == Channels - 1 ? value : limit;
    }
}

/// The columns of a grid repeat those of its tile.
void ExactArithmetic::MixColumns(std::span<const Mixed> mixed, const AxisTaps& columns,
                                 const Weight* weights, quint32* target) {
    const int width = static_cast<int>(mixed.size()) / Channels;
    for (const int first : columns.first) {
        std::array<float, Channels> sums{};
        int column = first % width;
        for (int tap = 0; tap < columns.taps; ++tap) {
            const Weight weight = *weights++;
            const float* pixel = mixed.data() + ptrdiff_t{column} * Channels;
            for (size_t channel = 0; channel < Channels; ++channel) {
                sums[channel] += weight * pixel[channel];
            }
            column = column + 1 == width ? 0 : column + 1;
        }
        StorePixel(sums, reinterpret_cast<uchar*>(target++));
    }
}

/// Weights of 1/256, without negative ones, and bytes between the passes, for drawing on the
/// screen.
struct FastArithmetic {
    using Weight = quint16;
    using Mixed = uchar;

    static std::vector<Weight> WeightsOf(const AxisTaps& axis);
    static void MixRows(const SourceRows& rows, const Weight* weights, std::span<Mixed> mixed);
    static void MixColumns(std::span<const Mixed> mixed, const AxisTaps& columns,
                           const Weight* weights, quint32* target);
};

/// Rounds the running sums, so that the weights of a pixel add up to One exactly.
std::vector<quint16> FastArithmetic::WeightsOf(const AxisTaps& axis) {
    std::vector<Weight> weights;
    weights.reserve(axis.weights.size());
    for (auto pixel = axis.weights.begin(); pixel != axis.weights.end(); pixel += axis.taps) {
        float sum = 0;
        int written = 0;
        std::for_each(pixel, pixel + axis.taps, [&](float weight) {
            sum += weight;
            const int total = static_cast<int>(std::lround(sum * One));
            weights.push_back(static_cast<Weight>(total - written));
            written = total;
        });
    }
    return weights;
}

template <typename TapCount>
void MixRowsOf(const uchar* const* rows, const quint16* weights, TapCount taps,
               std::span<uchar> mixed) {
    for (size_t i = 0; i < mixed.size(); ++i) {
        unsigned sum = One / 2;
        for (int tap = 0; tap < taps; ++tap) {
            sum = static_cast<quint16>(sum + rows[tap][i] * weights[tap]);
        }
        mixed[i] = static_cast<uchar>(sum >> 8);
    }
}

/// Bytes of all channels alike; counts that are known to the compiler let it vectorise.
void FastArithmetic::MixRows(const SourceRows& rows, const Weight* weights,
                             std::span<Mixed> mixed) {
    switch (rows.size()) {
        case 1:
            std::copy_n(rows.front(), mixed.size(), mixed.data());
            return;
        case 2:
            return MixRowsOf(rows.data(), weights, std::integral_constant<int, 2>(), mixed);
        case 3:
            return MixRowsOf(rows.data(), weights, std::integral_constant<int, 3>(), mixed);
        default:
            return MixRowsOf(rows.data(), weights, static_cast<int>(rows.size()), mixed);
    }
}

/// Two channels at once in one word: weights that sum up to 256 keep each of them below 16 bits.
template <typename TapCount>
void MixColumnsOf(const quint32* source, const AxisTaps& columns, const quint16* weight,
                  TapCount taps, quint32* target) {
    constexpr quint32 Even = 0x00ff00ff;
    constexpr quint32 Rounding = 0x00800080;
    for (const int first : columns.first) {
        quint32 even = Rounding;
        quint32 odd = Rounding;
        for (int tap = 0; tap < taps; ++tap, ++weight) {
            const quint32 pixel = source[first + tap];
            even += (pixel & Even) * *weight;
            odd += ((pixel >> 8) & Even) * *weight;
        }
        *target++ = ((even >> 8) & Even) | (odd & ~Even);
    }
}

void FastArithmetic::MixColumns(std::span<const Mixed> mixed, const AxisTaps& columns,
                                const Weight* weights, quint32* target) {
    const auto* source = reinterpret_cast<const quint32*>(mixed.data());
    switch (columns.taps) {
        case 1:
            std::ranges::transform(columns.first, target,
                                   [source](int first) { return source[first]; });
            return;
        case 2:
            return MixColumnsOf(source, columns, weights, std::integral_constant<int, 2>(), target);
        case 3:
            return MixColumnsOf(source, columns, weights, std::integral_constant<int, 3>(), target);
        default:
            return MixColumnsOf(source, columns, weights, columns.taps, target);
    }
}

template <typename Arithmetic>
struct WeightedAxis {
    explicit WeightedAxis(const AxisTaps& axisTaps)
        : axis(axisTaps), weights(Arithmetic::WeightsOf(axisTaps)) {}

    const AxisTaps& axis;
    std::vector<typename Arithmetic::Weight> weights;
};

/// Draws some rows, with a buffer of its own: mixes source rows first, then the columns of the row
/// that came of it.
template <typename Arithmetic>
class RowDrawer {
 public:
    using Axis = WeightedAxis<Arithmetic>;

    RowDrawer(const QImage& tile, const Axis& columns, const Axis& rows)
        : tile_(tile),
          columns_(columns),
          rows_(rows),
          // Of a grid the whole tile.
          begin_(columns.axis.EndSource() <= tile.width() ? columns.axis.FirstSource() : 0),
          end_(std::min(columns.axis.EndSource(), tile.width())),
          sourceRows_(static_cast<size_t>(rows.axis.taps)),
          mixed_(static_cast<size_t>(end_) * Channels) {}

    void Draw(int row, quint32* target) {
        const size_t skipped = static_cast<size_t>(begin_) * Channels;
        int y = rows_.axis.first[static_cast<size_t>(row)] % tile_.height();
        for (const uchar*& sourceRow : sourceRows_) {
            sourceRow = tile_.constScanLine(y) + skipped;
            y = y + 1 == tile_.height() ? 0 : y + 1;
        }
        Arithmetic::MixRows(sourceRows_, rows_.weights.data() + ptrdiff_t{row} * rows_.axis.taps,
                            std::span(mixed_).subspan(skipped));
        Arithmetic::MixColumns(mixed_, columns_.axis, columns_.weights.data(), target);
    }

    /// True where a row is the one before it once more.
    bool IsRepetition(int row) const {
        const auto index = static_cast<size_t>(row);
        return rows_.axis.taps == 1 && rows_.axis.first[index] == rows_.axis.first[index - 1];
    }

 private:
    const QImage& tile_;
    const Axis& columns_;
    const Axis& rows_;
    /// The tile's columns that are read, end exclusive.
    int begin_;
    int end_;
    SourceRows sourceRows_;
    std::vector<typename Arithmetic::Mixed> mixed_;
};

template <typename Arithmetic>
void DrawRows(const QImage& tile, const WeightedAxis<Arithmetic>& columns,
              const WeightedAxis<Arithmetic>& rows, QImage& destination, QPoint at) {
    const size_t width = columns.axis.first.size();
    const qsizetype bytesPerLine = destination.bytesPerLine();
    uchar* const topLeft = destination.bits() + at.y() * bytesPerLine + ptrdiff_t{4} * at.x();
    const auto line = [&](int row) {
        return reinterpret_cast<quint32*>(topLeft + row * bytesPerLine);
    };
    const cv::Range all(0, static_cast<int>(rows.axis.first.size()));
    cv::parallel_for_(all, [&](const cv::Range& range) {
        RowDrawer<Arithmetic> drawer(tile, columns, rows);
        for (int row = range.start; row < range.end; ++row) {
            if (row > range.start && drawer.IsRepetition(row)) {
                std::memcpy(line(row), line(row - 1), width * sizeof(quint32));
            } else {
                drawer.Draw(row, line(row));
            }
        }
    });
}

}  // namespace

Pixels Resampled(const Pixels& pixels, QSize size) {
    if (pixels.IsEmpty() || size.isEmpty()) {
        return {};
    }
    if (size == pixels.Size()) {
        return pixels;
    }
    if (pixels.Arranged() != nullptr) {
        return Resampled(Pixels(pixels.ToImage()), size);
    }
    QImage result = NewImage(size, pixels.Tile().format());
    const auto taps = [](int source, int target) {
        return MakeAxisTaps(source, static_cast<double>(source) / target, 0, target, Filter::Cubic);
    };
    const AxisTaps columns = taps(pixels.Width(), size.width());
    const AxisTaps rows = taps(pixels.Height(), size.height());
    using Axis = WeightedAxis<ExactArithmetic>;
    DrawRows(pixels.Tile(), Axis(columns), Axis(rows), result, {});
    return Pixels(std::move(result));
}

void DrawResampled(const QImage& source, const AxisTaps& columns, const AxisTaps& rows,
                   QImage& destination, QPoint at) {
    using Axis = WeightedAxis<FastArithmetic>;
    DrawRows(source, Axis(columns), Axis(rows), destination, at);
}

}  // namespace kadrona::imaging
