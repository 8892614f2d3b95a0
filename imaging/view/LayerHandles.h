#pragma once

#include <QPointF>
#include <QRect>
#include <optional>
#include <vector>

namespace kadrona::imaging::view {

/// One of the eight handles of a layer's selection frame, or the layer's body (0, 0).
///
///     (-1,-1)---( 0,-1)---( 1,-1)
///        |                   |
///     (-1, 0)   ( 0, 0)   ( 1, 0)
///        |                   |
///     (-1, 1)---( 0, 1)---( 1, 1)
struct Handle {
    int x = 0;
    int y = 0;
    bool operator==(const Handle&) const = default;
    bool IsBody() const { return x == 0 && y == 0; }
};

/// The handles of a frame at `frame`, each drawn and hit about its centre. All in device pixels.
/// On a small frame the handles move outwards and the edge handles go, so that the body can always
/// be reached.
class HandleLayout {
 public:
    /// `hitSize`: side of the square that takes a press.
    HandleLayout(const QRect& frame, int hitSize);

    struct Place {
        Handle handle;
        QPoint centre;
    };
    const std::vector<Place>& Places() const { return places_; }
    std::optional<Handle> HandleAt(QPointF point) const;

 private:
    int hitSize_;
    std::vector<Place> places_;
};

/// A layer's rectangle made wider by `by` pixels on either side, or narrower where that is
/// negative. It keeps its middle and the ratio of `shape`, the layer's own size, which many small
/// steps would lose otherwise. Within the limits of a LayerDrag. All in image pixels.
QRect ScaledAboutMiddle(const QRect& layer, QSize shape, int by, QSize photo);

/// A layer's drag by its body or a handle. It knows the rectangle and the pointer at the start
/// alone, so that a rectangle that somebody corrects on the way makes no drift.
/// All in image pixels.
class LayerDrag {
 public:
    static constexpr int MinimumSide = 16;
    static constexpr int MaximumSideOfPhoto = 4;

    /// `start` is not empty.
    LayerDrag(const QRect& start, Handle handle, QPointF pressedAt, QSize photo);

    /// The layer's rectangle with the pointer at `pointer`. A handle keeps the aspect ratio and the
    /// opposite corner, or the middle of the opposite edge.
    QRect RectangleAt(QPointF pointer) const;
    const QRect& Start() const { return start_; }

 private:
    QRect Resized(QPointF pointerMove) const;

    QRect start_;
    Handle handle_;
    QPointF pressedAt_;
    double smallestScale_;
    double largestScale_;
};

}  // namespace kadrona::imaging::view
