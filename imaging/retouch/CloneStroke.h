#pragma once

#include <QLineF>
#include <QPoint>
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "imaging/retouch/CloneStamp.h"
#include "imaging/retouch/StrokeRecord.h"

namespace kadrona::imaging {

/// Where a brush covers fully, and where it ends.
struct BrushFalloff {
    explicit BrushFalloff(const Brush& brush);
    double At(double distance) const;

    /// In pixels from the brush's middle; the outer one is larger.
    double inner;
    double outer;
};

/// The same, 0 ... 255, from squares of distances.
class CoverageTable {
 public:
    explicit CoverageTable(const BrushFalloff& falloff);

    std::uint8_t At(float squareOfDistance) const {
        const float place = (squareOfDistance - innerSquare_) * perSquare_;
        return coverage_[static_cast<size_t>(std::clamp(place, 0.0F, float{Steps}))];
    }

 private:
    static constexpr int Steps = 4096;

    float innerSquare_;
    float perSquare_;
    std::array<std::uint8_t, Steps + 1> coverage_;
};

/// One stroke. The brush is drawn along lines, not dab by dab: the coverage of a pixel is that of
/// the nearest point of the way, whatever the speed. It only ever grows within a stroke, and each
/// time the pixel is mixed anew from what it and its source were before the stroke.
class CloneStamp::Stroke {
 public:
    /// A target pixel is copied from the one at `offset` from it.
    Stroke(LayeredImage& image, const Brush& brush, QPoint offset, QPointF start);

    void DrawTo(QPointF position);
    /// False once anything else has changed the photo, which ends the stroke.
    bool IsPhotoTheSame() const;

 private:
    bool Changes(const QLineF& way, const QRect& area) const;
    void DrawPiece(const QLineF& way);
    void DrawRow(const QLineF& way, const QRect& area, int y, std::span<QRgb> row,
                 std::span<QRgb> source);

    LayeredImage& image_;
    double reach_;
    CoverageTable coverage_;
    QPoint offset_;
    QPointF position_;
    StrokeRecord record_;
    qint64 photoKey_;
    bool isRecorded_ = false;
};

}  // namespace kadrona::imaging
