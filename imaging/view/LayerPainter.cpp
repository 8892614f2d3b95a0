#include "imaging/view/LayerPainter.h"

#include <algorithm>

#include "imaging/view/SelectionFrame.h"

namespace kadrona::imaging::view {

namespace {

// Draws the pixels scaled to `place`.
void PaintPixels(QPainter& painter, const Pixels& pixels, ScaledPixels& scaled, const QRect& place,
                 const LayerPainter::Request& request) {
    const QRect visible = place & QRect(QPoint(0, 0), request.geometry.ViewSize());
    const QRect painted = visible & request.dirty;
    if (painted.isEmpty() || pixels.IsEmpty()) {
        return;
    }
    scaled.Draw(pixels, place.size(), visible.translated(-place.topLeft()), request.quality);
    const QPoint drawingOrigin = place.topLeft() + scaled.DrawnPart().topLeft();
    painter.drawImage(painted.topLeft(), scaled.Drawing(), painted.translated(-drawingOrigin));
}

void PaintBackground(QPainter& painter, const QRegion& uncovered, const QColor& background) {
    for (const QRect& rectangle : uncovered) {
        painter.fillRect(rectangle, background);
    }
}

}  // namespace

void LayerPainter::Paint(QPainter& painter, const LayeredImage& image, const Request& request) {
    const Pixels& photo = image.Photo();
    const bool isShown = !photo.IsEmpty() && image.LayerAt(0).visible;
    const QRect place = isShown ? request.geometry.ImageRectangle() : QRect();
    const bool isOpaque = photo.Tile().format() == QImage::Format_RGB32;
    PaintBackground(painter, QRegion(request.dirty) - (isOpaque ? place : QRect()),
                    request.background);
    if (isShown && !place.contains(request.dirty)) {
        shadow_.Draw(painter, place, request.deviceScale);
    }
    PaintPixels(painter, photo, photo_, place, request);

    layers_.resize(static_cast<size_t>(std::max(0, image.LayerCount() - 1)),
                   ScaledPixels(Enlargement::Smooth));
    for (int i = 1; i < image.LayerCount(); ++i) {
        const Layer& layer = image.LayerAt(i);
        if (layer.visible && !layer.rectangle.isEmpty()) {
            painter.setOpacity(layer.transparency / 255.0);
            PaintPixels(painter, layer.pixels, layers_[static_cast<size_t>(i) - 1],
                        request.geometry.ToDevice(layer.rectangle), request);
            painter.setOpacity(1.0);
        }
    }
    if (IsFramed(image, image.CurrentLayer())) {
        const QRect layer =
            request.geometry.ToDevice(image.LayerAt(image.CurrentLayer()).rectangle);
        SelectionFrame(request.deviceScale).Draw(painter, layer, request.accent);
    }
}

bool IsFramed(const LayeredImage& image, int layer) {
    if (layer <= 0 || layer != image.CurrentLayer()) {
        return false;
    }
    const Layer& framed = image.LayerAt(layer);
    return framed.visible && framed.selectionFrameVisible && !framed.rectangle.isEmpty();
}

std::vector<LayerAppearance> AppearancesOf(const LayeredImage& image, const ViewGeometry& geometry,
                                           double deviceScale) {
    std::vector<LayerAppearance> appearances;
    const SelectionFrame frame(deviceScale);
    for (int i = 0; i < image.LayerCount(); ++i) {
        const Layer& layer = image.LayerAt(i);
        appearances.push_back({frame.Extent(geometry.ToDevice(layer.rectangle)), layer.visible,
                               IsFramed(image, i), layer.transparency,
                               layer.pixels.Tile().cacheKey()});
    }
    return appearances;
}

}  // namespace kadrona::imaging::view
