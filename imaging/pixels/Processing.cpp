#include "imaging/pixels/Processing.h"

#include <algorithm>
#include <opencv2/core.hpp>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

int RoundedQuotient(double sum, qint64 count) {
    return static_cast<int>((2 * static_cast<qint64>(sum) + count) / (2 * count));
}

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

AverageColour AverageOf(const Pixels& pixels) {
    if (pixels.IsEmpty()) {
        return {};
    }
    const QImage& tile = pixels.Tile();
    // Sums of bytes stay exact in a double up to 2^53, far above any picture.
    const cv::Scalar sums = cv::sum(ConstMatView(tile));
    const qint64 count = qint64{tile.width()} * tile.height();
    return {RoundedQuotient(sums[2], count), RoundedQuotient(sums[1], count),
            RoundedQuotient(sums[0], count)};
}

Pixels Cropped(const Pixels& pixels, const QRect& rectangle) {
    if (rectangle.isEmpty()) {
        return {};
    }
    if (!QRect(QPoint(), pixels.Size()).contains(rectangle)) {
        return Pixels(pixels.Region(rectangle, qRgb(255, 255, 255)));
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

Pixels Turned(const Pixels& pixels, QuarterTurn turn) {
    if (pixels.IsEmpty()) {
        return {};
    }
    const QImage& tile = pixels.Tile();
    QImage turned = NewImage(tile.size().transposed(), tile.format());
    cv::Mat target = MatView(turned);
    cv::rotate(
        ConstMatView(tile), target,
        turn == QuarterTurn::Clockwise ? cv::ROTATE_90_CLOCKWISE : cv::ROTATE_90_COUNTERCLOCKWISE);
    return {turned, pixels.Rows(), pixels.Columns()};
}

Pixels Repeated(const Pixels& pixels, int columns, int rows) {
    int allColumns = 0;
    int allRows = 0;
    if (qMulOverflow(pixels.Columns(), columns, &allColumns) ||
        qMulOverflow(pixels.Rows(), rows, &allRows)) {
        ThrowOutOfMemory();
    }
    return {pixels.Tile(), allColumns, allRows};
}

}  // namespace kadrona::imaging
