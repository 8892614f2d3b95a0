#include "imaging/metafile/MetafileShapes.h"

#include <cmath>

namespace kadrona::imaging {

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

}  // namespace kadrona::imaging
