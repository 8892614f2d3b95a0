#pragma once

#include <QPainterPath>
#include <QPolygonF>

namespace kadrona::imaging {

/// Shapes that EMF and WMF share, as paths in logical units.
QPainterPath PolylinePath(const QPolygonF& points);
QPainterPath PolygonPath(const QPolygonF& points);
/// The first point is the start, then three for each curve.
QPainterPath BezierPath(const QPolygonF& points);
QPainterPath RectanglePath(const QRectF& rectangle);
QPainterPath EllipsePath(const QRectF& rectangle);
/// `corner` is width and height of the corners' ellipse.
QPainterPath RoundRectanglePath(const QRectF& rectangle, QSizeF corner);

}  // namespace kadrona::imaging
