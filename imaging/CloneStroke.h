#pragma once

#include <QLineF>
#include <QPoint>
#include <span>

#include "imaging/CloneStamp.h"
#include "imaging/StrokeRecord.h"

namespace kadrona::imaging {

/// Where a brush covers fully, and where it ends.
struct BrushFalloff {
    explicit BrushFalloff(const Brush& brush);
    double At(double distance) const;

    /// In pixels from the brush's middle; the outer one is larger.
    double inner;
    double outer;
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
    void DrawPiece(const QLineF& way);
    void DrawRow(const QLineF& way, const QRect& area, int y, std::span<QRgb> row,
                 std::span<QRgb> source);

    LayeredImage& image_;
    BrushFalloff falloff_;
    double pieceLength_;
    QPoint offset_;
    QPointF position_;
    StrokeRecord record_;
    qint64 photoKey_;
    bool isRecorded_ = false;
};

}  // namespace kadrona::imaging
