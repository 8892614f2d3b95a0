#include "imaging/view/SelectionFrame.h"

#include <algorithm>
#include <cmath>

namespace kadrona::imaging::view {

namespace {

// In logical pixels.
constexpr double LineWidth = 1.0;
constexpr double HandleSize = 10.0;
constexpr double HitSize = 16.0;

constexpr QColor Light(255, 255, 255, 230);
constexpr QColor HandleEdge(0, 0, 0, 70);

int DevicePixels(double logical, double deviceScale) {
    return std::max(1, static_cast<int>(std::lround(logical * deviceScale)));
}

QRect Grown(const QRect& rectangle, int by) { return rectangle.adjusted(-by, -by, by, by); }

// A line of `width` just outside of `inner`, without a pen's rounding.
void DrawOutline(QPainter& painter, const QRect& inner, int width, const QColor& colour) {
    const QRect outer = Grown(inner, width);
    painter.fillRect(outer.left(), outer.top(), outer.width(), width, colour);
    painter.fillRect(outer.left(), inner.bottom() + 1, outer.width(), width, colour);
    painter.fillRect(outer.left(), inner.top(), width, inner.height(), colour);
    painter.fillRect(inner.right() + 1, inner.top(), width, inner.height(), colour);
}

}  // namespace

SelectionFrame::SelectionFrame(double deviceScale)
    : lineWidth_(DevicePixels(LineWidth, deviceScale)),
      handleSize_(DevicePixels(HandleSize, deviceScale)),
      hitSize_(DevicePixels(HitSize, deviceScale)) {}

void SelectionFrame::Draw(QPainter& painter, const QRect& layer, const QColor& accent) const {
    DrawOutline(painter, layer, lineWidth_, accent);
    DrawOutline(painter, Grown(layer, lineWidth_), lineWidth_, Light);
    const HandleLayout handles = Handles(layer);
    for (const HandleLayout::Place& place : handles.Places()) {
        QRect square(0, 0, handleSize_, handleSize_);
        square.moveTopLeft(place.centre - QPoint(handleSize_ / 2, handleSize_ / 2));
        const QRect inside = Grown(square, -2 * lineWidth_);
        DrawOutline(painter, Grown(square, -lineWidth_), lineWidth_, HandleEdge);
        DrawOutline(painter, inside, lineWidth_, accent);
        painter.fillRect(inside, Qt::white);
    }
}

QRect SelectionFrame::Extent(const QRect& layer) const {
    // A frame that is smaller than its handles grows by at most one and a half of their hit size.
    return Grown(layer, 2 * hitSize_ + 2 * lineWidth_);
}

Qt::CursorShape CursorFor(Handle handle) {
    if (handle.IsBody()) {
        return Qt::SizeAllCursor;
    }
    if (handle.x == 0) {
        return Qt::SizeVerCursor;
    }
    if (handle.y == 0) {
        return Qt::SizeHorCursor;
    }
    return handle.x == handle.y ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

}  // namespace kadrona::imaging::view
