#pragma once

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>
#include <optional>
#include <variant>
#include <vector>

#include "imaging/metafile/DeviceIndependentBitmap.h"
#include "imaging/metafile/MetafileFault.h"
#include "imaging/metafile/MetafileState.h"

namespace kadrona::imaging {

enum class ShapePainting { Fill, Stroke, FillAndStroke };

/// GDI's raster operation codes that are more than a composition of source and target.
namespace rasteroperation {
constexpr quint32 Blackness = 0x00000042;
constexpr quint32 Whiteness = 0x00ff0062;
constexpr quint32 SourceCopy = 0x00cc0020;
constexpr quint32 PatternCopy = 0x00f00021;
constexpr quint32 Nothing = 0x00aa0029;
}  // namespace rasteroperation

/// A bitmap to draw: `source` in its pixels (of negative size where mirrored), `target` in logical
/// units.
struct BitmapDrawing {
    BitmapView bitmap;
    QRectF source;
    QRectF target;
    /// Any other than SourceCopy and Nothing is refused.
    quint32 rasterOperation = rasteroperation::SourceCopy;
    BitmapAlpha alpha = BitmapAlpha::Ignored;
    double opacity = 1;
};

/// Where metafile records are drawn: a device context over an image. Coordinates are logical, the
/// present state maps them. Whatever the records ask for, the work is bounded: throws
/// MetafileFault::TooComplex; and UnsupportedRecord where a bitmap is combined with what is below
/// it.
class MetafileCanvas {
 public:
    using Object = std::variant<QPen, QBrush>;

    /// For `maximumBitmapPixels`, where bitmaps are looked at but not drawn.
    static constexpr qint64 MeasureOnly = 0;

    /// `deviceToImage` maps the recording device's pixels to the target's. Does not own the target.
    MetafileCanvas(QImage& target, const QTransform& deviceToImage, QSizeF dotsPerMillimetre,
                   qint64 maximumBitmapPixels);

    MetafileState& State() { return state_; }
    void Save();
    /// To the state saved as number `saved` (from 1), or -`saved` states back.
    void Restore(int saved);
    void Select(const Object& object);

    void Draw(const QPainterPath& path, ShapePainting painting);
    void MoveTo(const QPointF& point) { state_.position = point; }
    /// From the present position on; the path's last point becomes the position.
    void DrawFromPosition(const QPolygonF& points, bool bezier);
    void Draw(const BitmapDrawing& drawing);
    void FillRectangle(const QRectF& rectangle, quint32 rasterOperation);
    void SetPixel(const QPointF& point, const QColor& colour);

    void ClipTo(const QRectF& rectangle);
    /// Replaces the clipping, in pixels of the device; none: everything.
    void SetDeviceClip(const std::optional<std::vector<QRectF>>& parts);

    bool HasDrawn() const { return hasDrawn_; }
    /// How many of its pixels the finest large bitmap has for one of the target's.
    double FinestBitmap() const { return finestBitmap_; }

 private:
    QTransform ToImage() const;
    QPainterPath ToImage(const QPainterPath& path) const;
    QPen ScaledPen() const;
    /// `length` is the path's.
    void Stroke(const QPainterPath& imagePath, double length);
    void Paint(const QPainterPath& imagePath, ShapePainting painting);
    void Charge(double work);
    static void RequireFew(qint64 depth);
    void NoteFineness(const BitmapDrawing& drawing, const QTransform& toImage);

    QImage& target_;
    QPainter painter_;
    QTransform deviceToImage_;
    QSizeF dotsPerMillimetre_;
    qint64 maximumBitmapPixels_;
    MetafileState state_;
    std::vector<MetafileState> saved_;
    bool hasDrawn_ = false;
    double finestBitmap_ = 0;
    double workLeft_;
};

}  // namespace kadrona::imaging
