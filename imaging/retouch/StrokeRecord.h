#pragma once

#include <QImage>
#include <QRect>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace kadrona::imaging {

/// What one stroke of a brush needs to know of the photo that it changes: the pixels as they were
/// before the stroke, and how much of each is covered by now. Both are kept for the blocks alone
/// that the stroke has reached.
class StrokeRecord {
 public:
    static constexpr int BlockLength = 64;

    /// A row of a block.
    struct Row {
        const QRgb* original;
        std::uint8_t* coverage;
    };

    explicit StrokeRecord(QSize photo);

    /// To be called with an area inside the photo before anything there is changed.
    void Save(const QImage& photo, const QRect& area);

    /// From pixel x on, to the end of its block's row. Precondition: saved.
    Row RowAt(int x, int y);

    /// The pixels x ... x + count - 1 of a row as they were before the stroke, wherever they are by
    /// now. Precondition: inside the photo.
    void CopyOriginal(const QImage& photo, int x, int y, int count, QRgb* target) const;

    /// Pixels from x on that lie in one block, at most `count`.
    static int RunLength(int x, int count);

 private:
    static constexpr size_t PixelCount = size_t{BlockLength} * BlockLength;

    struct Block {
        std::array<QRgb, PixelCount> original;
        std::array<std::uint8_t, PixelCount> coverage;
    };

    size_t BlockIndex(int x, int y) const;
    static size_t OffsetInBlock(int x, int y);

    int columns_;
    /// Null where the stroke has not been.
    std::vector<std::unique_ptr<Block>> blocks_;
};

}  // namespace kadrona::imaging
