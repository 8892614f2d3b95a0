#include "imaging/pixels/Resampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <opencv2/core/hal/intrin.hpp>
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

/// Sixteen bytes of a row, times a weight.
struct Sixteen {
    std::array<cv::v_float32x4, 4> sums{cv::v_setzero_f32(), cv::v_setzero_f32(),
                                        cv::v_setzero_f32(), cv::v_setzero_f32()};

    void Add(const uchar* bytes, float weight) {
        cv::v_uint16x8 low;
        cv::v_uint16x8 high;
        cv::v_expand(cv::v_load(bytes), low, high);
        std::array<cv::v_uint32x4, 4> wide;
        cv::v_expand(low, wide[0], wide[1]);
        cv::v_expand(high, wide[2], wide[3]);
        const cv::v_float32x4 factor = cv::v_setall_f32(weight);
        for (size_t i = 0; i < sums.size(); ++i) {
            sums[i] += cv::v_cvt_f32(cv::v_reinterpret_as_s32(wide[i])) * factor;
        }
    }
};

/// All rows of a few columns after the other, so that the sums stay in the processor's registers.
void ExactArithmetic::MixRows(const SourceRows& rows, const Weight* weights,
                              std::span<Mixed> mixed) {
    constexpr size_t AtOnce = 16;
    size_t i = 0;
    for (; i + AtOnce <= mixed.size(); i += AtOnce) {
        Sixteen channels;
        for (size_t row = 0; row < rows.size(); ++row) {
            channels.Add(rows[row] + i, weights[row]);
        }
        for (size_t part = 0; part < channels.sums.size(); ++part) {
            cv::v_store(mixed.data() + i + part * Channels, channels.sums[part]);
        }
    }
    for (; i < mixed.size(); ++i) {
        mixed[i] = 0;
        for (size_t row = 0; row < rows.size(); ++row) {
            mixed[i] += weights[row] * static_cast<float>(rows[row][i]);
        }
    }
}

/// A negative weight may lead outside of what a channel holds; premultiplied, no colour may exceed
/// its alpha, which stands last. Rounded, halves up.
quint32 StoredPixel(const cv::v_float32x4& sums) {
    const cv::v_float32x4 limit =
        cv::v_min(cv::v_broadcast_element<Channels - 1>(sums), cv::v_setall_f32(255));
    const cv::v_float32x4 within = cv::v_max(cv::v_min(sums, limit), cv::v_setzero_f32());
    const cv::v_int32x4 rounded = cv::v_trunc(within + cv::v_setall_f32(0.5F));
    const cv::v_int16x8 words = cv::v_pack(rounded, rounded);
    return cv::v_reinterpret_as_u32(cv::v_pack_u(words, words)).get0();
}

/// The columns of a grid repeat those of its tile.
void ExactArithmetic::MixColumns(std::span<const Mixed> mixed, const AxisTaps& columns,
                                 const Weight* weights, quint32* target) {
    const int width = static_cast<int>(mixed.size()) / Channels;
    for (const int first : columns.first) {
        cv::v_float32x4 sums = cv::v_setzero_f32();
        int column = first % width;
        for (int tap = 0; tap < columns.taps; ++tap) {
            const float* pixel = mixed.data() + ptrdiff_t{column} * Channels;
            sums += cv::v_load(pixel) * cv::v_setall_f32(*weights++);
            column = column + 1 == width ? 0 : column + 1;
        }
        *target++ = StoredPixel(sums);
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
    const QImage tile = pixels.TileOrWhole();
    QImage result = NewImage(size, tile.format());
    const auto taps = [](int source, int target) {
        return MakeAxisTaps(source, static_cast<double>(source) / target, 0, target, Filter::Cubic);
    };
    const AxisTaps columns = taps(pixels.Width(), size.width());
    const AxisTaps rows = taps(pixels.Height(), size.height());
    using Axis = WeightedAxis<ExactArithmetic>;
    DrawRows(tile, Axis(columns), Axis(rows), result, {});
    return Pixels(std::move(result));
}

void DrawResampled(const QImage& source, const AxisTaps& columns, const AxisTaps& rows,
                   QImage& destination, QPoint at) {
    using Axis = WeightedAxis<FastArithmetic>;
    DrawRows(source, Axis(columns), Axis(rows), destination, at);
}

}  // namespace kadrona::imaging
