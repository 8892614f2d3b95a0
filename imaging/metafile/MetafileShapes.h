#pragma once

#include <QPainterPath>
#include <QPolygonF>

namespace kadrona::imaging {

enum class ArcKind { Open, Chord, Pie };

/// Shapes that EMF and WMF share, as paths in logical units.
QPainterPath PolylinePath(const QPolygonF& points);
QPainterPath PolygonPath(const QPolygonF& points);
/// The first point is the start, then three for each curve.
QPainterPath BezierPath(const QPolygonF& points);
QPainterPath RectanglePath(const QRectF& rectangle);
QPainterPath EllipsePath(const QRectF& rectangle);
/// `corner` is width and height of the corners' ellipse.
QPainterPath RoundRectanglePath(const QRectF& rectangle, QSizeF corner);
/// The part of the ellipse in `box` between the rays from its middle through `start` and `end`.
QPainterPath ArcPath(const QRectF& box, const QPointF& start, const QPointF& end, ArcKind kind,
                     bool clockwise);

}  // namespace kadrona::imaging
