#include "imaging/tone/Curves.h"

#include <algorithm>
#include <numeric>

#include "imaging/tone/ColourEffects.h"
#include "imaging/tone/LevelTable.h"
#include "imaging/tone/MonotoneCubic.h"

namespace kadrona::imaging {

namespace {

const std::vector<CurvePoint>& IdentityPoints() {
    static const std::vector<CurvePoint> points{{0, 0}, {HighestCurveLevel, HighestCurveLevel}};
    return points;
}

/// Sorted by input, the last of those with one input.
std::vector<CurvePoint> Ordered(std::vector<CurvePoint> points) {
    for (CurvePoint& point : points) {
        point.input = std::clamp(point.input, 0, HighestCurveLevel);
        point.output = std::clamp(point.output, 0, HighestCurveLevel);
    }
    std::stable_sort(points.begin(), points.end(),
                     [](const CurvePoint& a, const CurvePoint& b) { return a.input < b.input; });
    const auto keptEnd =
        std::unique(points.rbegin(), points.rend(),
                    [](const CurvePoint& a, const CurvePoint& b) { return a.input == b.input; });
    points.erase(points.begin(), keptEnd.base());
    return points;
}

/// One curve after the other, rounded once.
LevelTable Chained(const Curve& first, const MonotoneCubic& second) {
    const MonotoneCubic own(first.Points());
    return MakeTable([&](double level) { return second.At(own.At(level)); });
}

}  // namespace

Curve::Curve() : points_(IdentityPoints()) {}

Curve::Curve(std::vector<CurvePoint> points) : points_(Ordered(std::move(points))) {
    if (points_.size() < 2) {
        points_ = IdentityPoints();
    }
}

bool Curve::IsIdentity() const {
    return points_.front().input == 0 && points_.back().input == HighestCurveLevel &&
           std::all_of(points_.begin(), points_.end(),
                       [](const CurvePoint& point) { return point.input == point.output; });
}

LevelTable Curve::Table() const {
    const MonotoneCubic curve(points_);
    return MakeTable([&](double level) { return curve.At(level); });
}

int CurveSet::PointCount() const {
    return std::accumulate(curves.begin(), curves.end(), 0, [](int sum, const Curve& curve) {
        return sum + static_cast<int>(curve.Points().size());
    });
}

PixelFilterPointer CurveFilter(const CurveSet& curves) {
    const MonotoneCubic combined(curves[CurveChannel::Rgb].Points());
    return TableFilter({Chained(curves[CurveChannel::Red], combined),
                        Chained(curves[CurveChannel::Green], combined),
                        Chained(curves[CurveChannel::Blue], combined)});
}

}  // namespace kadrona::imaging
