#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>

#include "imaging/view/LayerHandles.h"

namespace kadrona::imaging::view {

/// How the current layer's selection frame looks, in device pixels.
class SelectionFrame {
 public:
    /// `deviceScale`: device pixels per logical pixel.
    explicit SelectionFrame(double deviceScale);

    /// Draws the frame just outside of `layer`, so that it covers nothing of it but what lies under
    /// its handles. A light and a dark or coloured line side by side show on every photo.
    void Draw(QPainter& painter, const QRect& layer, const QColor& accent) const;

    HandleLayout Handles(const QRect& layer) const { return {layer, hitSize_}; }

    /// What drawing a frame around `layer` may touch.
    QRect Extent(const QRect& layer) const;

 private:
    int lineWidth_;
    int handleSize_;
    int hitSize_;
};

Qt::CursorShape CursorFor(Handle handle);

}  // namespace kadrona::imaging::view
