#include "imaging/view/LayerPainter.h"

#include <algorithm>
#include <cstring>
#include <opencv2/core.hpp>
#include <span>

#include "imaging/pixels/NewImage.h"
#include "imaging/view/SelectionFrame.h"

namespace kadrona::imaging::view {

namespace {

// What is to be painted, and where it lies in the drawing.
struct Painted {
    QRect onScreen;
    QRect inDrawing;
};

// Draws the pixels scaled to `place` into `scaled`. Empty where nothing of them is to be painted.
Painted DrawScaled(const Pixels& pixels, ScaledPixels& scaled, const QRect& place,
                   const LayerPainter::Request& request) {
    const QRect visible = place & QRect(QPoint(0, 0), request.geometry.ViewSize());
    const QRect painted = visible & request.dirty;
    if (painted.isEmpty() || pixels.IsEmpty()) {
        return {};
    }
    scaled.Draw(pixels, place.size(), visible.translated(-place.topLeft()), request.quality);
    const QPoint drawingOrigin = place.topLeft() + scaled.DrawnPart().topLeft();
    return {painted, painted.translated(-drawingOrigin)};
}

void PaintPixels(QPainter& painter, const Pixels& pixels, ScaledPixels& scaled, const QRect& place,
                 const LayerPainter::Request& request) {
    const Painted painted = DrawScaled(pixels, scaled, place, request);
    if (painted.onScreen.isEmpty()) {
        return;
    }
    painter.drawImage(painted.onScreen.topLeft(), scaled.Drawing(), painted.inDrawing);
}

// Copies `part` of the drawing, filtered, into the top left corner of `filtered`.
void FilterPart(const QImage& drawing, const QRect& part, const PixelFilter& filter,
                QImage& filtered) {
    if (filtered.format() != drawing.format() || filtered.width() < part.width() ||
        filtered.height() < part.height()) {
        filtered = NewImage(part.size().expandedTo(filtered.size()), drawing.format());
    }
    uchar* const target = filtered.bits();
    const qsizetype step = filtered.bytesPerLine();
    cv::parallel_for_(cv::Range(0, part.height()), [&](const cv::Range& rows) {
        for (int row = rows.start; row < rows.end; ++row) {
            const std::span line(reinterpret_cast<QRgb*>(target + row * step),
                                 static_cast<size_t>(part.width()));
            std::memcpy(line.data(),
                        drawing.constScanLine(part.top() + row) + ptrdiff_t{4} * part.left(),
                        line.size_bytes());
            filter.Apply(line);
        }
    });
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
    const bool isOpaque =
        photo.Arranged() != nullptr || photo.Tile().format() == QImage::Format_RGB32;
    PaintBackground(painter, QRegion(request.dirty) - (isOpaque ? place : QRect()),
                    request.background);
    if (isShown && !place.contains(request.dirty)) {
        shadow_.Draw(painter, place, request.deviceScale);
    }
    PaintPhoto(painter, photo, place, request);

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

bool LayerPainter::IsProvisional() const {
    return photo_.IsProvisional() || std::ranges::any_of(layers_, [](const ScaledPixels& layer) {
               return layer.IsProvisional();
           });
}

bool LayerPainter::Prepare(const LayeredImage& image) {
    if (image.IsEmpty()) {
        return true;
    }
    bool isDone = photo_.Prepare(image.Photo());
    for (int i = 1; i < image.LayerCount() && i <= static_cast<int>(layers_.size()) && isDone;
         ++i) {
        isDone = layers_[static_cast<size_t>(i) - 1].Prepare(image.LayerAt(i).pixels);
    }
    return isDone;
}

void LayerPainter::PaintPhoto(QPainter& painter, const Pixels& photo, const QRect& place,
                              const Request& request) {
    if (request.filter == nullptr) {
        PaintPixels(painter, photo, photo_, place, request);
        return;
    }
    const Painted painted = DrawScaled(photo, photo_, place, request);
    if (!painted.onScreen.isEmpty()) {
        FilterPart(photo_.Drawing(), painted.inDrawing, *request.filter, filtered_);
        painter.drawImage(painted.onScreen.topLeft(), filtered_,
                          QRect(QPoint(), painted.onScreen.size()));
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
                               IsFramed(image, i), layer.transparency, layer.pixels.Key()});
    }
    return appearances;
}

}  // namespace kadrona::imaging::view
