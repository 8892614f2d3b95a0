#include "imaging/document/PixelDifference.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "imaging/pixels/NewImage.h"
#include "platform/Error.h"

namespace kadrona::imaging {

namespace {

constexpr int BytesPerPixel = 4;

size_t RowLength(const QRect& area) {
    return static_cast<size_t>(area.width()) * BytesPerPixel;
}

const uchar* PixelAt(const QImage& image, int x, int y) {
    return image.constScanLine(y) + qsizetype{x} * BytesPerPixel;
}

bool AreEqual(const QImage& a, const QImage& b, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        if (std::memcmp(PixelAt(a, area.left(), y), PixelAt(b, area.left(), y), RowLength(area)) !=
            0) {
            return false;
        }
    }
    return true;
}

QImage CopyOf(const QImage& image, const QRect& area) {
    QImage copy = NewImage(area.size(), image.format());
    for (int y = 0; y < area.height(); ++y) {
        std::memcpy(copy.scanLine(y), PixelAt(image, area.left(), area.top() + y), RowLength(area));
    }
    return copy;
}

void Paste(const QImage& source, QPoint position, QImage& target) {
    for (int y = 0; y < source.height(); ++y) {
        std::memcpy(target.scanLine(position.y() + y) + qsizetype{position.x()} * BytesPerPixel,
                    source.constScanLine(y), RowLength(source.rect()));
    }
}

/// The blocks that an area of an image touches.
std::vector<QRect> BlocksIn(const QRect& area, const QRect& image) {
    constexpr int Length = PixelDifference::BlockLength;
    const QRect inside = area & image;
    std::vector<QRect> blocks;
    for (int y = inside.top() / Length * Length; y <= inside.bottom(); y += Length) {
        for (int x = inside.left() / Length * Length; x <= inside.right(); x += Length) {
            blocks.push_back(QRect(x, y, Length, Length) & image);
        }
    }
    return blocks;
}

std::vector<QRect> DifferingBlocks(const QImage& a, const QImage& b) {
    std::vector<QRect> blocks = BlocksIn(a.rect(), a.rect());
    std::erase_if(blocks, [&](const QRect& block) { return AreEqual(a, b, block); });
    return blocks;
}

/// Blocks that are nearly the whole image are not worth copying.
bool SaveEnough(const std::vector<QRect>& blocks, QSize image) {
    const auto add = [](qint64 sum, const QRect& block) {
        return sum + qint64{block.width()} * block.height();
    };
    const qint64 covered = std::accumulate(blocks.begin(), blocks.end(), qint64{0}, add);
    return covered * 4 <= qint64{image.width()} * image.height() * 3;
}

bool AreComparable(const Pixels& a, const Pixels& b) {
    const bool areGrids = a.Arranged() == nullptr && b.Arranged() == nullptr;
    return areGrids && a.Tile().size() == b.Tile().size() &&
           a.Tile().format() == b.Tile().format() && a.Columns() == b.Columns() &&
           a.Rows() == b.Rows();
}

}  // namespace

PixelDifference::PixelDifference(const Pixels& base, const Pixels& target) {
    if (base.SharesPixelsWith(target)) {
        return;
    }
    if (!AreComparable(base, target)) {
        whole_ = target;
        return;
    }
    const std::vector<QRect> areas = DifferingBlocks(base.Tile(), target.Tile());
    if (!SaveEnough(areas, target.Tile().size())) {
        whole_ = target;
        return;
    }
    try {
        for (const QRect& area : areas) {
            blocks_.push_back({area.topLeft(), CopyOf(target.Tile(), area)});
        }
    } catch (const platform::Error&) {
        blocks_.clear();
        whole_ = target;
    }
}

void PixelDifference::HoldArea(const Pixels& base, const QRect& area) {
    if (!whole_.IsEmpty()) {
        return;
    }
    for (const QRect& block : BlocksIn(area, base.Tile().rect())) {
        const bool isHeld = std::any_of(blocks_.begin(), blocks_.end(), [&](const Block& held) {
            return held.position == block.topLeft();
        });
        if (!isHeld) {
            blocks_.push_back({block.topLeft(), CopyOf(base.Tile(), block)});
        }
    }
}

void PixelDifference::ApplyTo(Pixels& base) const {
    if (!whole_.IsEmpty()) {
        base = whole_;
        return;
    }
    if (blocks_.empty()) {
        return;
    }
    QImage& tile = base.EditableTile();
    for (const Block& block : blocks_) {
        Paste(block.pixels, block.position, tile);
    }
}

qsizetype PixelDifference::BlockByteCount() const {
    const auto add = [](qsizetype sum, const Block& block) {
        return sum + block.pixels.sizeInBytes();
    };
    return std::accumulate(blocks_.begin(), blocks_.end(), qsizetype{0}, add);
}

}  // namespace kadrona::imaging
