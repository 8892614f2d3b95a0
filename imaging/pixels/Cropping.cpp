#include "imaging/pixels/Cropping.h"

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

/// `part` of an image, sharing its scan lines. The result keeps the image's pixels alive, and as it
/// is read-only to Qt, whoever changes it gets a copy of its own first; changing the image itself
/// copies too, for this holds a reference to it.
QImage SharedPart(const QImage& image, const QRect& part) {
    const uchar* start =
        image.constScanLine(part.top()) + qsizetype{part.left()} * (image.depth() / 8);
    const auto release = [](void* owner) { delete static_cast<QImage*>(owner); };
    auto* owner = new QImage(image);
    QImage shared(start, part.width(), part.height(), image.bytesPerLine(), image.format(), release,
                  owner);
    if (shared.isNull()) {
        release(owner);
        ThrowOutOfMemory();
    }
    return shared;
}

bool CoversWholeTiles(const QRect& part, QSize tile) {
    return part.left() % tile.width() == 0 && part.top() % tile.height() == 0 &&
           part.width() % tile.width() == 0 && part.height() % tile.height() == 0;
}

}  // namespace

Pixels Cropped(const Pixels& pixels, const QRect& rectangle) {
    if (rectangle.isEmpty()) {
        return {};
    }
    if (!QRect(QPoint(), pixels.Size()).contains(rectangle)) {
        return Pixels(pixels.Region(rectangle, qRgb(255, 255, 255)));
    }
    if (pixels.Arranged() != nullptr) {
        return Pixels(pixels.Region(rectangle, 0));
    }
    const QSize tile = pixels.Tile().size();
    if (CoversWholeTiles(rectangle, tile)) {
        return {pixels.Tile(), rectangle.width() / tile.width(),
                rectangle.height() / tile.height()};
    }
    const QRect part(QPoint(rectangle.left() % tile.width(), rectangle.top() % tile.height()),
                     rectangle.size());
    if (pixels.Tile().rect().contains(part)) {
        return Pixels(SharedPart(pixels.Tile(), part));
    }
    return Pixels(pixels.Region(rectangle, 0));
}

Pixels CanvasEnlarged(const Pixels& pixels, QSize size, const QColor& background) {
    const QSize canvas = size.expandedTo(pixels.Size());
    if (canvas == pixels.Size()) {
        return pixels;
    }
    const QSize difference = canvas - pixels.Size();
    const QPoint topLeft(-(difference.width() / 2), -(difference.height() / 2));
    return Pixels(pixels.Region(QRect(topLeft, canvas), background.rgb()));
}

Pixels Repeated(const Pixels& pixels, int columns, int rows) {
    int allColumns = 0;
    int allRows = 0;
    if (qMulOverflow(pixels.Columns(), columns, &allColumns) ||
        qMulOverflow(pixels.Rows(), rows, &allRows)) {
        ThrowOutOfMemory();
    }
    return {pixels.TileOrWhole(), allColumns, allRows};
}

}  // namespace kadrona::imaging
