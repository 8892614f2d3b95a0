#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

namespace kadrona::imaging {

/// A picture as a value: one tile, repeated in a grid of columns and rows. A photo is a grid of
/// one; a sheet of passport photos is a grid of its single photo, so that it takes the memory of
/// one photo, and drawing and writing it never need it unrolled.
///
///     columns = 3, rows = 2        Size() = 3 * tile width  by  2 * tile height
///     +----+----+----+
///     |tile|tile|tile|
///     +----+----+----+
///     |tile|tile|tile|
///     +----+----+----+
///
/// Copies share their pixels. The tile is QImage::Format_RGB32 where it is opaque and
/// Format_ARGB32_Premultiplied where it has alpha, sRGB, 8 bits a channel.
class Pixels {
 public:
    /// Empty: 0 by 0.
    Pixels() = default;

    /// A grid of one. Another format is converted. Alpha is kept only where the image has it.
    /// Throws platform::Error where memory for the conversion is short.
    explicit Pixels(QImage image);

    /// `tile` in a grid of `columns` by `rows`. Throws std::invalid_argument where one of them is
    /// below 1, platform::Error where width or height leave the range of int.
    Pixels(QImage tile, int columns, int rows);

    bool IsEmpty() const { return tile_.isNull(); }
    int Width() const { return tile_.width() * columns_; }
    int Height() const { return tile_.height() * rows_; }
    QSize Size() const { return {Width(), Height()}; }

    const QImage& Tile() const { return tile_; }
    /// The tile for changing it in place; its pixels are copied first where anything else shares
    /// them. Size and format must stay. Throws platform::Error where memory for the copy is short.
    QImage& EditableTile();

    int Columns() const { return columns_; }
    int Rows() const { return rows_; }

    /// The picture unrolled; shares the tile's pixels for a grid of one. Throws platform::Error
    /// where memory is short.
    QImage ToImage() const;

    /// The part inside `region` as an image of the region's size and the tile's format, opaque
    /// `background` where the region leaves the picture. Unrolls no more than the region. Throws
    /// platform::Error where memory is short.
    QImage Region(const QRect& region, QRgb background) const;

    /// True when both show the same grid of the very same (shared) pixels in memory.
    bool SharesPixelsWith(const Pixels& other) const;

    /// Memory that the tile takes.
    qsizetype ByteCount() const { return tile_.sizeInBytes(); }

 private:
    QImage tile_;
    int columns_ = 1;
    int rows_ = 1;
};

}  // namespace kadrona::imaging
