#pragma once

#include <vector>

#include "imaging/tone/Curves.h"

namespace kadrona::imaging {

/// The smooth function through a curve's points that rises, falls and turns only where they do, so
/// that it never overshoots them: piecewise cubic with the slopes of F. Fritsch and J. Butland, "A
/// method for constructing local monotone piecewise cubic interpolants", SIAM J. Sci. Stat. Comput.
/// 5(2), 1984, which satisfy F. Fritsch and R. Carlson, "Monotone piecewise cubic interpolation",
/// SIAM J. Numer. Anal. 17(2), 1980.
class MonotoneCubic {
 public:
    /// Points of strictly rising input, at least two.
    explicit MonotoneCubic(const std::vector<CurvePoint>& points);

    /// Level before the first and after the last point.
    double At(double input) const;

 private:
    struct Knot {
        double input;
        double output;
        double slope;
    };
    std::vector<Knot> knots_;
};

}  // namespace kadrona::imaging
