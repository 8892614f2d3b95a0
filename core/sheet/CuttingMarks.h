#pragma once

#include <QRect>
#include <QSize>
#include <vector>

namespace kadrona::core {

/// What shows where to cut; the order of the choice in the window.
enum class CuttingMarks {
    None,
    Corners,  ///< ticks that go on from the photos' edges at their corners
    Lines,    ///< hairlines along the edges, on to the next photo or the paper's edge
    Outline,  ///< a light frame around each photo
};

/// Of marks, in the unit of the rectangles that they are made for.
struct MarkMeasures {
    int width;
    /// Of a tick at a corner.
    int length;
};

/// 0.1 mm wide and 3 mm long, in micrometres.
inline constexpr MarkMeasures MarksOnPaper{100, 3000};

/// The marks around `photos` as rectangles that do not overlap. They keep off the photos, whose
/// edges they touch from outside, off the `texts`, and inside the paper. Where photos touch each
/// other there is no room for any. The unit is that of the rectangles, so that marks for pixels
/// keep off the very pixels of the photos.
std::vector<QRect> MarksAround(const std::vector<QRect>& photos, const std::vector<QRect>& texts,
                               QSize paper, CuttingMarks kind, MarkMeasures measures);

}  // namespace kadrona::core
