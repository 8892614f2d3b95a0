#pragma once

#include <QKeyEvent>
#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace kadrona::imaging::view {

/// Where the pointer is while a tool is on.
struct ToolPointer {
    QPointF photo;   ///< photo pixels; (0.5, 0.5) is the middle of the first
    QPointF widget;  ///< the view's own coordinates
    Qt::KeyboardModifiers modifiers;
};

/// What the left mouse button does to the photo while the tool is on in a view, instead of moving
/// layers and panning. The other buttons, Ctrl and the space bar go on panning.
class ViewTool {
 public:
    ViewTool() = default;
    virtual ~ViewTool() = default;
    ViewTool(const ViewTool&) = delete;
    ViewTool& operator=(const ViewTool&) = delete;

    virtual void Press(const ToolPointer& pointer) = 0;
    /// With and without the button held.
    virtual void Move(const ToolPointer& /*pointer*/) {}
    /// Ends every Press, also one that the view cuts short.
    virtual void Release() {}
    /// The pointer left the view.
    virtual void Leave() {}
    /// `notches` of the wheel, fractions allowed. True where the tool took it, else the view zooms.
    virtual bool Wheel(double /*notches*/, Qt::KeyboardModifiers /*modifiers*/) { return false; }
    /// Key down and, with the event's type, key up. True where the tool took it.
    virtual bool Key(const QKeyEvent& /*event*/) { return false; }

    /// What Paint draws over at the moment, in the view's coordinates.
    virtual QRectF OverlayArea() const { return {}; }
    /// Draws over the photo, in the view's coordinates.
    virtual void Paint(QPainter& /*painter*/) const {}
};

}  // namespace kadrona::imaging::view
