#pragma once

#include <QImage>
#include <QPoint>
#include <vector>

namespace kadrona::imaging::view {

enum class Filter {
    /// The source pixel under the destination pixel's centre.
    Nearest,
    /// Between the two source pixels around the destination pixel's centre.
    Linear,
    /// The mean of what the destination pixel covers.
    Area
};

/// How the destination pixels of one axis are mixed from source pixels: pixel i is the sum of
/// `taps` source pixels from first[i] on, by weights of 1/256 that sum up to 256.
struct AxisTaps {
    int taps = 0;
    std::vector<int> first;
    std::vector<quint16> weights;

    int FirstSource() const { return first.front(); }
    int EndSource() const { return first.back() + taps; }
};

/// The taps of the destination pixels from `begin` to before `end`. Destination pixel i covers the
/// source from i * step to (i + 1) * step; what lies outside of the source's `sourceLength` pixels
/// repeats its border.
AxisTaps MakeAxisTaps(int sourceLength, double step, int begin, int end, Filter filter);

/// Draws `source` over the pixels of `destination` from `at` on, as many as `columns` and `rows`
/// have. Both images have 32 bits a pixel, opaque or premultiplied.
void Resample(const QImage& source, const AxisTaps& columns, const AxisTaps& rows,
              QImage& destination, QPoint at);

}  // namespace kadrona::imaging::view
