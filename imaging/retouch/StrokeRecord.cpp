#include "imaging/retouch/StrokeRecord.h"

#include <algorithm>

namespace kadrona::imaging {

namespace {

const QRgb* PixelAt(const QImage& image, int x, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y)) + x;
}

size_t BlockCount(int length) {
    return static_cast<size_t>((length + StrokeRecord::BlockLength - 1) /
                               StrokeRecord::BlockLength);
}

}  // namespace

StrokeRecord::StrokeRecord(QSize photo)
    : columns_(static_cast<int>(BlockCount(photo.width()))),
      blocks_(BlockCount(photo.width()) * BlockCount(photo.height())) {}

size_t StrokeRecord::BlockIndex(int x, int y) const {
    return static_cast<size_t>(y / BlockLength) * static_cast<size_t>(columns_) +
           static_cast<size_t>(x / BlockLength);
}

size_t StrokeRecord::OffsetInBlock(int x, int y) {
    const int offset = y % BlockLength * BlockLength + x % BlockLength;
    return static_cast<size_t>(offset);
}

int StrokeRecord::RunLength(int x, int count) {
    return std::min(count, BlockLength - x % BlockLength);
}

void StrokeRecord::Save(const QImage& photo, const QRect& area) {
    const int firstX = area.left() / BlockLength * BlockLength;
    const int firstY = area.top() / BlockLength * BlockLength;
    for (int top = firstY; top <= area.bottom(); top += BlockLength) {
        for (int left = firstX; left <= area.right(); left += BlockLength) {
            std::unique_ptr<Block>& block = blocks_[BlockIndex(left, top)];
            if (block) {
                continue;
            }
            block = std::make_unique<Block>();
            const int width = std::min(BlockLength, photo.width() - left);
            const int height = std::min(BlockLength, photo.height() - top);
            for (int row = 0; row < height; ++row) {
                std::copy_n(PixelAt(photo, left, top + row), width,
                            block->original.data() + OffsetInBlock(0, row));
            }
        }
    }
}

StrokeRecord::Row StrokeRecord::RowAt(int x, int y) {
    Block& block = *blocks_[BlockIndex(x, y)];
    const size_t offset = OffsetInBlock(x, y);
    return {block.original.data() + offset, block.coverage.data() + offset};
}

void StrokeRecord::CopyOriginal(const QImage& photo, int x, int y, int count, QRgb* target) const {
    while (count > 0) {
        const int run = RunLength(x, count);
        const Block* block = blocks_[BlockIndex(x, y)].get();
        target = std::copy_n(
            block != nullptr ? block->original.data() + OffsetInBlock(x, y) : PixelAt(photo, x, y),
            run, target);
        x += run;
        count -= run;
    }
}

}  // namespace kadrona::imaging
