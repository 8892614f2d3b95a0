#include "imaging/metafile/MetafileCanvas.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "imaging/metafile/MetafileShapes.h"

namespace kadrona::imaging {

namespace {

/// Far outside of every picture, yet not so far that the painter takes long on its way there.
constexpr double FarthestCoordinate = 1e5;

double Clamped(double coordinate) {
    return std::isfinite(coordinate)
               ? std::clamp(coordinate, -FarthestCoordinate, FarthestCoordinate)
               : 0;
}

QRectF Clamped(const QRectF& rectangle) {
    const QPointF topLeft(Clamped(rectangle.left()), Clamped(rectangle.top()));
    return {topLeft, QPointF(Clamped(rectangle.right()), Clamped(rectangle.bottom()))};
}

double ScaleOf(const QTransform& transform) {
    return std::sqrt(std::abs(transform.determinant()));
}

void RequireKnown(quint32 rasterOperation, std::initializer_list<quint32> known) {
    if (std::find(known.begin(), known.end(), rasterOperation) == known.end()) {
        throw UnsupportedRecord{"TERNARYRASTEROPERATION", rasterOperation};
    }
}

/// Maps the source of a bitmap onto its target, mirrored where one of the sizes is negative.
QTransform SourceToTarget(const QRectF& source, const QRectF& target) {
    const double scaleX = target.width() / source.width();
    const double scaleY = target.height() / source.height();
    return {
        scaleX, 0, 0, scaleY, target.x() - source.x() * scaleX, target.y() - source.y() * scaleY};
}

}  // namespace

MetafileCanvas::MetafileCanvas(QImage& target, const QTransform& deviceToImage,
                               QSizeF dotsPerMillimetre, qint64 maximumBitmapPixels)
    : target_(target),
      painter_(&target),
      deviceToImage_(deviceToImage),
      dotsPerMillimetre_(dotsPerMillimetre),
      maximumBitmapPixels_(maximumBitmapPixels) {
    // Every pixel painted two hundred times, and a hundred thousand records that paint nothing.
    workLeft_ = 200.0 * target.width() * target.height() + 1e8;
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

void MetafileCanvas::Charge(double work) {
    constexpr double RecordWork = 1000;
    workLeft_ -= work + RecordWork;
    if (workLeft_ < 0) {
        throw MetafileFault::TooComplex;
    }
}

QTransform MetafileCanvas::ToImage() const {
    return state_.mapping.LogicalToDevice(dotsPerMillimetre_) * deviceToImage_;
}

QPainterPath MetafileCanvas::ToImage(const QPainterPath& path) const {
    QPainterPath mapped = ToImage().map(path);
    for (int i = 0; i < mapped.elementCount(); ++i) {
        const QPainterPath::Element element = mapped.elementAt(i);
        mapped.setElementPositionAt(i, Clamped(element.x), Clamped(element.y));
    }
    return mapped;
}

/// The painter keeps all rectangles of a clipping, once more for each state that is saved.
void MetafileCanvas::RequireFew(qint64 depth) {
    constexpr qint64 Deepest = 500;
    if (depth > Deepest) {
        throw MetafileFault::TooComplex;
    }
}

void MetafileCanvas::Save() {
    Charge(0);
    RequireFew(static_cast<qint64>(saved_.size()));
    saved_.push_back(state_);
    painter_.save();
}

void MetafileCanvas::Restore(int saved) {
    const auto count = static_cast<qint64>(saved_.size());
    const qint64 index = saved > 0 ? saved - qint64{1} : count + saved;
    if (saved == 0 || index < 0 || index >= count) {
        return;
    }
    state_ = saved_[static_cast<size_t>(index)];
    while (static_cast<qint64>(saved_.size()) > index) {
        saved_.pop_back();
        painter_.restore();
    }
}

void MetafileCanvas::Select(const Object& object) {
    if (const auto* pen = std::get_if<QPen>(&object)) {
        state_.pen = *pen;
    } else {
        state_.brush = std::get<QBrush>(object);
    }
}

QPen MetafileCanvas::ScaledPen() const {
    QPen pen = state_.pen;
    const double width = pen.widthF() * ScaleOf(ToImage());
    pen.setWidthF(std::isfinite(width) ? std::clamp(width, 1.0, 4096.0) : 1.0);
    return pen;
}

void MetafileCanvas::Stroke(const QPainterPath& imagePath, double length) {
    constexpr double MaximumDashes = 10'000;
    constexpr double DashWork = 1000;
    QPen pen = ScaledPen();
    if (pen.style() != Qt::SolidLine) {
        // The painter makes every dash, also far outside of the picture.
        const double dashes = length / pen.widthF();
        if (dashes > MaximumDashes) {
            pen.setStyle(Qt::SolidLine);
        } else {
            Charge(DashWork * dashes);
        }
    }
    // GDI's lines run through the middle of the pixels.
    const double half = 0.5 * ScaleOf(deviceToImage_);
    painter_.strokePath(imagePath.translated(half, half), pen);
}

void MetafileCanvas::Paint(const QPainterPath& imagePath, ShapePainting painting) {
    const QRectF visible = imagePath.controlPointRect() & QRectF(target_.rect());
    double length = 0;
    for (int i = 1; i < imagePath.elementCount(); ++i) {
        length += (QPointF(imagePath.elementAt(i)) - QPointF(imagePath.elementAt(i - 1)))
                      .manhattanLength();
    }
    // The painter follows an edge for its whole length, also outside of the picture.
    Charge(visible.width() * visible.height() + 4 * length + 100.0 * imagePath.elementCount());

    if (painting != ShapePainting::Stroke) {
        painter_.fillPath(imagePath, state_.brush);
    }
    if (painting != ShapePainting::Fill && state_.pen.style() != Qt::NoPen) {
        Stroke(imagePath, length);
    }
    hasDrawn_ = true;
}

void MetafileCanvas::Draw(const QPainterPath& path, ShapePainting painting) {
    QPainterPath imagePath = ToImage(path);
    imagePath.setFillRule(state_.fillRule);
    Paint(imagePath, painting);
}

void MetafileCanvas::DrawFromPosition(const QPolygonF& points, bool bezier) {
    if (points.isEmpty()) {
        return;
    }
    QPainterPath path(state_.position);
    if (bezier) {
        for (qsizetype i = 0; i + 2 < points.size(); i += 3) {
            path.cubicTo(points[i], points[i + 1], points[i + 2]);
        }
    } else {
        for (const QPointF& point : points) {
            path.lineTo(point);
        }
    }
    state_.position = points.back();
    Draw(path, ShapePainting::Stroke);
}

void MetafileCanvas::NoteFineness(const BitmapDrawing& drawing, const QTransform& toImage) {
    constexpr double LargePart = 0.1;
    const QSizeF inImage(drawing.target.width() * std::hypot(toImage.m11(), toImage.m12()),
                         drawing.target.height() * std::hypot(toImage.m21(), toImage.m22()));
    const double area = std::abs(inImage.width() * inImage.height());
    if (area > LargePart * target_.width() * target_.height()) {
        finestBitmap_ =
            std::max(finestBitmap_,
                     std::sqrt(std::abs(drawing.source.width() * drawing.source.height()) / area));
    }
}

void MetafileCanvas::Draw(const BitmapDrawing& drawing) {
    if (drawing.rasterOperation == rasteroperation::Nothing || drawing.source.width() == 0 ||
        drawing.source.height() == 0) {
        return;
    }
    RequireKnown(drawing.rasterOperation, {rasteroperation::SourceCopy});
    const QTransform toImage = ToImage();
    const QTransform fromBitmap = SourceToTarget(drawing.source, drawing.target) * toImage;
    const QRectF visible = Clamped(fromBitmap.mapRect(drawing.source)) & QRectF(target_.rect());
    Charge(visible.width() * visible.height() + double(drawing.bitmap.bits.size()));
    if (!fromBitmap.isInvertible() || fromBitmap.type() > QTransform::TxShear) {
        return;
    }
    NoteFineness(drawing, toImage);
    if (maximumBitmapPixels_ == MeasureOnly) {
        return;
    }
    const BitmapLayout layout = ReadBitmapLayout(drawing.bitmap.information);
    if (layout.height > 0 && layout.width > maximumBitmapPixels_ / layout.height) {
        throw MetafileFault::TooComplex;
    }
    const QImage image = DecodeBitmap(drawing.bitmap, drawing.alpha, maximumBitmapPixels_);
    if (image.isNull()) {
        return;
    }
    painter_.setTransform(fromBitmap);
    painter_.setOpacity(drawing.opacity);
    const QRectF source = drawing.source.normalized();
    painter_.drawImage(source, image, source);
    painter_.setOpacity(1);
    painter_.resetTransform();
    hasDrawn_ = true;
}

void MetafileCanvas::FillRectangle(const QRectF& rectangle, quint32 rasterOperation) {
    if (rasterOperation == rasteroperation::Nothing) {
        return;
    }
    RequireKnown(rasterOperation, {rasteroperation::PatternCopy, rasteroperation::Blackness,
                                   rasteroperation::Whiteness});
    const QBrush kept = state_.brush;
    if (rasterOperation == rasteroperation::Blackness) {
        state_.brush = Qt::black;
    } else if (rasterOperation == rasteroperation::Whiteness) {
        state_.brush = Qt::white;
    }
    Paint(ToImage(RectanglePath(rectangle)), ShapePainting::Fill);
    state_.brush = kept;
}

void MetafileCanvas::SetPixel(const QPointF& point, const QColor& colour) {
    const QBrush kept = std::exchange(state_.brush, colour);
    FillRectangle({point, QSizeF(1, 1)}, rasteroperation::PatternCopy);
    state_.brush = kept;
}

void MetafileCanvas::ClipTo(const QRectF& rectangle) {
    Charge(0);
    RequireFew(++state_.clippings);
    painter_.setClipPath(ToImage(RectanglePath(rectangle)), Qt::IntersectClip);
}

void MetafileCanvas::SetDeviceClip(const std::optional<std::vector<QRectF>>& parts) {
    Charge(parts ? 1000.0 * double(parts->size()) : 0);
    state_.clippings = 0;
    if (!parts) {
        painter_.setClipping(false);
        return;
    }
    QPainterPath path;
    for (const QRectF& part : *parts) {
        path.addRect(Clamped(deviceToImage_.mapRect(part)));
    }
    path.setFillRule(Qt::WindingFill);
    painter_.setClipPath(path);
}

}  // namespace kadrona::imaging
