#pragma once

#include <cmath>

namespace kadrona::imaging {

/// Keys' cubic convolution kernel with a = -1/2 (R. Keys, "Cubic convolution interpolation for
/// digital image processing", IEEE Trans. ASSP 29(6), 1981). Zero from a distance of 2 on.
inline double CubicKernel(double distance) {
    const double x = std::abs(distance);
    if (x < 1) {
        return (1.5 * x - 2.5) * x * x + 1;
    }
    return x < 2 ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
}

}  // namespace kadrona::imaging
