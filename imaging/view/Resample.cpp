#include "imaging/view/Resample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <opencv2/core/utility.hpp>

namespace kadrona::imaging::view {

namespace {

constexpr int One = 256;

// Source span [from, to) with a weight per length that is constant (Area) or two weighted pixels
// (Linear, Nearest), brought to a fixed number of taps inside the source.
class TapWriter {
 public:
    TapWriter(AxisTaps& axis, int sourceLength) : axis_(axis), sourceLength_(sourceLength) {}

    void Begin(int firstSource) {
        axis_.first.push_back(std::clamp(firstSource, 0, sourceLength_ - axis_.taps));
        axis_.weights.resize(axis_.weights.size() + static_cast<size_t>(axis_.taps), 0);
        written_ = 0;
        exact_ = 0;
    }

    // Rounds the running sum, so that the weights of a pixel add up to One exactly.
    void Add(int source, double share) {
        exact_ += share;
        const int total = static_cast<int>(std::lround(exact_ * One));
        const int inside = std::clamp(source, 0, sourceLength_ - 1);
        const auto tap = static_cast<size_t>(
            std::clamp(inside - axis_.first.back(), 0, axis_.taps - 1));
        auto& weight = axis_.weights[axis_.weights.size() - static_cast<size_t>(axis_.taps) + tap];
        weight = static_cast<quint16>(weight + total - written_);
        written_ = total;
    }

 private:
    AxisTaps& axis_;
    int sourceLength_;
    int written_ = 0;
    double exact_ = 0;
};

int TapsOf(Filter filter, double step) {
    switch (filter) {
        case Filter::Nearest:
            return 1;
        case Filter::Linear:
            return 2;
        case Filter::Area:
            break;
    }
    return static_cast<int>(std::ceil(step)) + 1;
}

void AddArea(TapWriter& writer, double from, double to) {
    const int first = static_cast<int>(std::floor(from));
    const int end = static_cast<int>(std::ceil(to));
    writer.Begin(first);
    for (int source = first; source < end; ++source) {
        const double covered = std::min<double>(to, source + 1) - std::max<double>(from, source);
        writer.Add(source, covered / (to - from));
    }
}

void AddLinear(TapWriter& writer, double centre) {
    const double position = centre - 0.5;
    const int first = static_cast<int>(std::floor(position));
    const double share = position - first;
    writer.Begin(first);
    writer.Add(first, 1 - share);
    writer.Add(first + 1, share);
}

// Rows are mixed first, whole: bytes of all channels alike, which the compiler vectorises.
template <int Taps>
void MixRowsOf(const uchar* const* rows, const quint16* weights, uchar* mixed, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        unsigned sum = One / 2;
        for (int tap = 0; tap < Taps; ++tap) {
            sum = static_cast<quint16>(sum + rows[tap][i] * weights[tap]);
        }
        mixed[i] = static_cast<uchar>(sum >> 8);
    }
}

void MixRows(const std::vector<const uchar*>& rows, const quint16* weights, uchar* mixed,
             int bytes) {
    if (rows.size() == 2) {
        return MixRowsOf<2>(rows.data(), weights, mixed, bytes);
    }
    if (rows.size() == 3) {
        return MixRowsOf<3>(rows.data(), weights, mixed, bytes);
    }
    for (int i = 0; i < bytes; ++i) {
        unsigned sum = One / 2;
        for (size_t tap = 0; tap < rows.size(); ++tap) {
            sum += rows[tap][i] * weights[tap];
        }
        mixed[i] = static_cast<uchar>(sum >> 8);
    }
}

// Two channels at once in one word: a weight sum of 256 keeps each of them below 16 bits.
template <typename TapCount>
void MixColumnsOf(const quint32* source, const AxisTaps& columns, TapCount taps,
                  quint32* destination) {
    constexpr quint32 Even = 0x00ff00ff;
    constexpr quint32 Rounding = 0x00800080;
    const quint16* weight = columns.weights.data();
    for (const int first : columns.first) {
        quint32 even = Rounding;
        quint32 odd = Rounding;
        for (int tap = 0; tap < taps; ++tap, ++weight) {
            const quint32 pixel = source[first + tap];
            even += (pixel & Even) * *weight;
            odd += ((pixel >> 8) & Even) * *weight;
        }
        *destination++ = ((even >> 8) & Even) | (odd & ~Even);
    }
}

void MixColumns(const quint32* source, const AxisTaps& columns, quint32* destination) {
    switch (columns.taps) {
        case 1:
            std::ranges::transform(columns.first, destination,
                                   [source](int first) { return source[first]; });
            return;
        case 2:
            return MixColumnsOf(source, columns, std::integral_constant<int, 2>(), destination);
        case 3:
            return MixColumnsOf(source, columns, std::integral_constant<int, 3>(), destination);
        default:
            return MixColumnsOf(source, columns, columns.taps, destination);
    }
}

// Draws some rows, with a buffer of its own.
class RowDrawer {
 public:
    RowDrawer(const QImage& source, const AxisTaps& columns, const AxisTaps& rows)
        : source_(source),
          columns_(columns),
          rows_(rows),
          sourceRows_(static_cast<size_t>(rows.taps)),
          mixed_(static_cast<size_t>(columns.EndSource())) {}

    void Draw(int row, quint32* destination) {
        MixColumns(MixedRow(row), columns_, destination);
    }

    bool IsRepetition(int row) const {
        return row > 0 && rows_.taps == 1 && rows_.first[index(row)] == rows_.first[index(row - 1)];
    }

 private:
    static size_t index(int i) { return static_cast<size_t>(i); }

    const quint32* MixedRow(int row) {
        const int first = rows_.first[index(row)];
        if (rows_.taps == 1) {
            return reinterpret_cast<const quint32*>(source_.constScanLine(first));
        }
        const int skipped = columns_.FirstSource();
        for (int tap = 0; tap < rows_.taps; ++tap) {
            sourceRows_[index(tap)] = source_.constScanLine(first + tap) + ptrdiff_t{4} * skipped;
        }
        MixRows(sourceRows_, rows_.weights.data() + ptrdiff_t{row} * rows_.taps,
                reinterpret_cast<uchar*>(mixed_.data() + skipped),
                4 * (columns_.EndSource() - skipped));
        return mixed_.data();
    }

    const QImage& source_;
    const AxisTaps& columns_;
    const AxisTaps& rows_;
    std::vector<const uchar*> sourceRows_;
    std::vector<quint32> mixed_;
};

}  // namespace

AxisTaps MakeAxisTaps(int sourceLength, double step, int begin, int end, Filter filter) {
    AxisTaps axis;
    axis.taps = std::min(TapsOf(filter, step), sourceLength);
    axis.first.reserve(static_cast<size_t>(end - begin));
    axis.weights.reserve(static_cast<size_t>(end - begin) * static_cast<size_t>(axis.taps));
    TapWriter writer(axis, sourceLength);
    for (int i = begin; i < end; ++i) {
        const double centre = (i + 0.5) * step;
        if (filter == Filter::Area) {
            AddArea(writer, i * step, (i + 1) * step);
        } else if (filter == Filter::Linear) {
            AddLinear(writer, centre);
        } else {
            writer.Begin(static_cast<int>(std::floor(centre)));
            writer.Add(static_cast<int>(std::floor(centre)), 1.0);
        }
    }
    return axis;
}

void Resample(const QImage& source, const AxisTaps& columns, const AxisTaps& rows,
              QImage& destination, QPoint at) {
    const int height = static_cast<int>(rows.first.size());
    const size_t width = columns.first.size();
    uchar* const topLeft = destination.bits() + ptrdiff_t{4} * at.x() +
                           qsizetype{at.y()} * destination.bytesPerLine();
    const auto line = [&](int row) {
        return reinterpret_cast<quint32*>(topLeft + qsizetype{row} * destination.bytesPerLine());
    };
    cv::parallel_for_(cv::Range(0, height), [&](const cv::Range& range) {
        RowDrawer drawer(source, columns, rows);
        for (int row = range.start; row < range.end; ++row) {
            if (row > range.start && drawer.IsRepetition(row)) {
                std::memcpy(line(row), line(row - 1), width * sizeof(quint32));
            } else {
                drawer.Draw(row, line(row));
            }
        }
    });
}

}  // namespace kadrona::imaging::view
