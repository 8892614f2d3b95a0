#pragma once

#include <vector>

namespace kadrona::imaging {

enum class Filter {
    /// The source pixel under the target pixel's middle.
    Nearest,
    /// Between the two source pixels around the target pixel's middle.
    Linear,
    /// The mean of what the target pixel covers.
    Area,
    /// Keys' cubic kernel, stretched where the picture shrinks, so that what is finer than a target
    /// pixel averages out.
    Cubic
};

/// How the target pixels of one axis are mixed from source pixels: each of `taps` neighbours, from
/// `first` on, by weights that sum up to 1. What lies outside the source does not count.
struct AxisTaps {
    int taps = 0;
    /// One for each target pixel.
    std::vector<int> first;
    /// `taps` for each target pixel.
    std::vector<float> weights;

    int FirstSource() const { return first.front(); }
    int EndSource() const { return first.back() + taps; }
};

/// The taps of the target pixels from `begin` to before `end`. Target pixel i covers the source
/// from i * step to (i + 1) * step, in source pixels.
AxisTaps MakeAxisTaps(int sourceLength, double step, int begin, int end, Filter filter);

}  // namespace kadrona::imaging
