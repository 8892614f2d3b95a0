#include "imaging/pixels/Pixels.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <stdexcept>

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

QImage Normalized(QImage image) {
    const auto format =
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (image.isNull() || image.format() == format) {
        return image;
    }
    return RequireAllocated(std::move(image).convertToFormat(format));
}

void RequireIntRange(qint64 length) {
    if (length > std::numeric_limits<int>::max()) {
        ThrowOutOfMemory();
    }
}

const QRgb* ScanLine(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// Copies `count` pixels of the endless repetition of a tile's row, from column `x` on.
void CopyRepeated(const QRgb* row, int rowLength, int x, int count, QRgb* target) {
    x %= rowLength;
    while (count > 0) {
        const int part = std::min(count, rowLength - x);
        target = std::copy_n(row + x, part, target);
        count -= part;
        x = 0;
    }
}

void FillRow(QImage& image, int row, int begin, int end, QRgb colour) {
    auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
    std::fill(pixels + begin, pixels + end, colour);
}

/// What of an arrangement lies in `region`.
QImage RegionOf(const Arrangement& arrangement, const QRect& region, QRgb background) {
    QImage image = NewImage(region.size(), QImage::Format_RGB32);
    image.fill(background);
    const auto fill = [&](const QRect& area, QRgb colour) {
        const QRect part = (area & region).translated(-region.topLeft());
        for (int row = part.top(); row <= part.bottom(); ++row) {
            FillRow(image, row, part.left(), part.right() + 1, colour);
        }
    };
    fill(QRect(QPoint(), arrangement.size), qRgb(255, 255, 255));
    for (const Arrangement::Placed& placed : arrangement.placed) {
        const QRect part = arrangement.RectangleOf(placed) & region;
        const QImage& picture = arrangement.pictures[placed.picture];
        for (int y = part.top(); y <= part.bottom(); ++y) {
            auto* target = reinterpret_cast<QRgb*>(image.scanLine(y - region.top()));
            std::copy_n(ScanLine(picture, y - placed.at.y()) + (part.left() - placed.at.x()),
                        part.width(), target + (part.left() - region.left()));
        }
    }
    for (const Arrangement::Mark& mark : arrangement.marks) {
        fill(mark.area & QRect(QPoint(), arrangement.size), mark.colour);
    }
    return image;
}

/// Below 0, where no image has its key.
qint64 NewKey() {
    static std::atomic<qint64> last = 0;
    return --last;
}

}  // namespace

Pixels::Pixels(QImage image) : tile_(Normalized(std::move(image))) {}

Pixels::Pixels(QImage tile, int columns, int rows)
    : tile_(Normalized(std::move(tile))), columns_(columns), rows_(rows) {
    if (columns < 1 || rows < 1) {
        throw std::invalid_argument("a grid needs a column and a row");
    }
    RequireIntRange(qint64{tile_.width()} * columns);
    RequireIntRange(qint64{tile_.height()} * rows);
}

Pixels::Pixels(Arrangement arrangement) : arrangementKey_(NewKey()) {
    const QRect canvas(QPoint(), arrangement.size);
    const bool fits = std::ranges::all_of(arrangement.placed, [&](const auto& placed) {
        return canvas.contains(arrangement.RectangleOf(placed));
    });
    if (canvas.isEmpty() || !fits) {
        throw std::invalid_argument("a picture reaches beyond its canvas");
    }
    for (QImage& picture : arrangement.pictures) {
        picture = Normalized(std::move(picture));
    }
    arrangement_ = std::make_shared<const Arrangement>(std::move(arrangement));
}

qsizetype Pixels::ByteCount() const {
    qsizetype bytes = tile_.sizeInBytes();
    if (arrangement_) {
        for (const QImage& picture : arrangement_->pictures) {
            bytes += picture.sizeInBytes();
        }
    }
    return bytes;
}

QImage& Pixels::EditableTile() {
    // QImage copies by itself when it is written to, but leaves nothing where memory is short.
    if (!tile_.isDetached()) {
        tile_ = RequireAllocated(tile_.copy());
    }
    return tile_;
}

QImage Pixels::ToImage() const {
    if (columns_ == 1 && rows_ == 1 && !arrangement_) {
        return tile_;
    }
    return IsEmpty() ? QImage() : Region(QRect(QPoint(), Size()), 0);
}

QImage Pixels::Region(const QRect& region, QRgb background) const {
    background |= 0xff000000;
    if (arrangement_) {
        return RegionOf(*arrangement_, region, background);
    }
    QImage image = NewImage(region.size(), IsEmpty() ? QImage::Format_RGB32 : tile_.format());
    const QRect inside = region & QRect(QPoint(), Size());
    if (inside.isEmpty()) {
        image.fill(background);
        return image;
    }
    // Counted from the region's left edge.
    const int begin = inside.left() - region.left();
    const int end = begin + inside.width();
    for (int row = 0; row < image.height(); ++row) {
        auto* target = reinterpret_cast<QRgb*>(image.scanLine(row));
        const int y = region.top() + row;
        if (y < inside.top() || y > inside.bottom()) {
            std::fill_n(target, image.width(), background);
            continue;
        }
        std::fill_n(target, begin, background);
        CopyRepeated(ScanLine(tile_, y % tile_.height()), tile_.width(), inside.left(),
                     inside.width(), target + begin);
        std::fill_n(target + end, image.width() - end, background);
    }
    return image;
}

bool Pixels::SharesPixelsWith(const Pixels& other) const {
    return arrangement_ == other.arrangement_ && tile_.constBits() == other.tile_.constBits() &&
           tile_.size() == other.tile_.size() &&
           tile_.bytesPerLine() == other.tile_.bytesPerLine() &&
           tile_.format() == other.tile_.format() && columns_ == other.columns_ &&
           rows_ == other.rows_;
}

}  // namespace kadrona::imaging
