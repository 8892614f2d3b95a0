#include "imaging/tone/MonotoneCubic.h"

#include <algorithm>
#include <cmath>

namespace kadrona::imaging {

namespace {

/// Between two neighbouring points.
struct Secant {
    double length;
    double slope;
};

std::vector<Secant> SecantsOf(const std::vector<CurvePoint>& points) {
    std::vector<Secant> secants;
    for (size_t i = 1; i < points.size(); ++i) {
        const double length = points[i].input - points[i - 1].input;
        secants.push_back({length, (points[i].output - points[i - 1].output) / length});
    }
    return secants;
}

/// At a point between two secants: their harmonic mean, weighted for their lengths, or level where
/// the curve turns.
double InnerSlope(const Secant& left, const Secant& right) {
    if (left.slope * right.slope <= 0) {
        return 0;
    }
    const double leftWeight = 2 * right.length + left.length;
    const double rightWeight = 2 * left.length + right.length;
    return (leftWeight + rightWeight) / (leftWeight / left.slope + rightWeight / right.slope);
}

/// At an end: that of the parabola through three points, as far as it keeps the curve monotone.
double EndSlope(const Secant& outer, const Secant& inner) {
    const double slope =
        ((2 * outer.length + inner.length) * outer.slope - outer.length * inner.slope) /
        (outer.length + inner.length);
    if (slope * outer.slope <= 0) {
        return 0;
    }
    return std::abs(slope) > 3 * std::abs(outer.slope) ? 3 * outer.slope : slope;
}

}  // namespace

MonotoneCubic::MonotoneCubic(const std::vector<CurvePoint>& points) {
    const std::vector<Secant> secants = SecantsOf(points);
    for (size_t i = 0; i < points.size(); ++i) {
        double slope = secants.front().slope;
        if (secants.size() > 1) {
            if (i == 0) {
                slope = EndSlope(secants[0], secants[1]);
            } else if (i == secants.size()) {
                slope = EndSlope(secants[i - 1], secants[i - 2]);
            } else {
                slope = InnerSlope(secants[i - 1], secants[i]);
            }
        }
        knots_.push_back(
            {static_cast<double>(points[i].input), static_cast<double>(points[i].output), slope});
    }
}

double MonotoneCubic::At(double input) const {
    const auto right =
        std::upper_bound(knots_.begin(), knots_.end(), input,
                         [](double value, const Knot& knot) { return value < knot.input; });
    if (right == knots_.begin() || right == knots_.end()) {
        return right == knots_.begin() ? knots_.front().output : knots_.back().output;
    }
    const Knot& from = right[-1];
    const Knot& to = *right;
    const double length = to.input - from.input;
    const double t = (input - from.input) / length;
    const double rest = 1 - t;
    // Cubic Hermite interpolation in Bernstein form.
    return rest * rest * ((1 + 2 * t) * from.output + t * length * from.slope) +
           t * t * ((3 - 2 * t) * to.output - rest * length * to.slope);
}

}  // namespace kadrona::imaging
