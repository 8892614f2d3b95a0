#pragma once

#include <QPoint>
#include <array>
#include <vector>

#include "imaging/tone/LevelTable.h"
#include "imaging/tone/PixelFilter.h"

namespace kadrona::imaging {

/// Inputs and outputs of a curve go from 0 to this.
constexpr int HighestCurveLevel = 255;

/// One point of a tone curve; both 0 ... 255.
struct CurvePoint {
    int input = 0;
    int output = 0;
    bool operator==(const CurvePoint&) const = default;
};

/// A tone curve through points of strictly rising input, at least two. Smooth between them,
/// never overshooting its points (monotone where they are), level before the first and after the
/// last point. imaging/tone/MonotoneCubic.h names the method.
class Curve {
 public:
    /// The identity: (0, 0) and (255, 255).
    Curve();
    /// Sorts the points by input; of several with one input the last is kept. Coordinates are
    /// brought into 0 ... 255. Fewer than two points give the identity.
    explicit Curve(std::vector<CurvePoint> points);

    const std::vector<CurvePoint>& Points() const { return points_; }
    /// True where no level changes.
    bool IsIdentity() const;
    LevelTable Table() const;

    bool operator==(const Curve&) const = default;

 private:
    std::vector<CurvePoint> points_;
};

/// Index of a curve in a set; the order of the channel box and of the preset files.
enum class CurveChannel { Rgb = 0, Red = 1, Green = 2, Blue = 3 };

/// The curves of one preset. Each of red, green and blue goes through its own curve first, then
/// through the combined one, and is rounded in the end alone.
struct CurveSet {
    std::array<Curve, 4> curves;

    Curve& operator[](CurveChannel channel) { return curves[static_cast<size_t>(channel)]; }
    const Curve& operator[](CurveChannel channel) const {
        return curves[static_cast<size_t>(channel)];
    }
    int PointCount() const;
    bool operator==(const CurveSet&) const = default;
};

PixelFilterPointer CurveFilter(const CurveSet& curves);

}  // namespace kadrona::imaging
