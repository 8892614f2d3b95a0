#include "imaging/metafile/MetafileShapes.h"

#include <cmath>
#include <numbers>

namespace kadrona::imaging {

namespace {

/// The direction of a point from a box's middle, in degrees counterclockwise, on the circle that
/// the box squeezes into its ellipse.
double AngleOf(const QRectF& box, const QPointF& point) {
    const QPointF offset = point - box.center();
    return std::atan2(-offset.y() * box.width(), offset.x() * box.height()) * 180 /
           std::numbers::pi;
}

}  // namespace

QPainterPath PolylinePath(const QPolygonF& points) {
    QPainterPath path;
    path.addPolygon(points);
    return path;
}

QPainterPath PolygonPath(const QPolygonF& points) {
    QPainterPath path = PolylinePath(points);
    path.closeSubpath();
    return path;
}

QPainterPath BezierPath(const QPolygonF& points) {
    QPainterPath path;
    if (points.isEmpty()) {
        return path;
    }
    path.moveTo(points[0]);
    for (qsizetype i = 1; i + 2 < points.size(); i += 3) {
        path.cubicTo(points[i], points[i + 1], points[i + 2]);
    }
    return path;
}

QPainterPath RectanglePath(const QRectF& rectangle) {
    QPainterPath path;
    path.addRect(rectangle);
    return path;
}

QPainterPath EllipsePath(const QRectF& rectangle) {
    QPainterPath path;
    path.addEllipse(rectangle);
    return path;
}

QPainterPath RoundRectanglePath(const QRectF& rectangle, QSizeF corner) {
    QPainterPath path;
    path.addRoundedRect(rectangle.normalized(), std::abs(corner.width()) / 2,
                        std::abs(corner.height()) / 2);
    return path;
}

QPainterPath ArcPath(const QRectF& box, const QPointF& start, const QPointF& end, ArcKind kind,
                     bool clockwise) {
    const QRectF ellipse = box.normalized();
    const double startAngle = AngleOf(ellipse, start);
    double sweep = AngleOf(ellipse, end) - startAngle;
    // Equal rays mean the whole ellipse.
    if (!clockwise && sweep <= 0) {
        sweep += 360;
    } else if (clockwise && sweep >= 0) {
        sweep -= 360;
    }
    QPainterPath path;
    if (kind == ArcKind::Pie) {
        path.moveTo(ellipse.center());
    } else {
        path.arcMoveTo(ellipse, startAngle);
    }
    path.arcTo(ellipse, startAngle, sweep);
    if (kind != ArcKind::Open) {
        path.closeSubpath();
    }
    return path;
}

}  // namespace kadrona::imaging
