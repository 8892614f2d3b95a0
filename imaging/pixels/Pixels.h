#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <memory>

#include "imaging/pixels/Arrangement.h"

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
/// A sheet whose copies stand apart, or of several pictures, is an Arrangement instead. It is
/// shown, printed and written like any picture; it has no tile, and what changes it unrolls it
/// first.
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

    /// The pictures of `arrangement` are opaque. Throws std::invalid_argument where its canvas is
    /// empty or one of its pictures reaches beyond it.
    explicit Pixels(Arrangement arrangement);

    bool IsEmpty() const { return tile_.isNull() && !arrangement_; }
    int Width() const {
        return arrangement_ ? arrangement_->size.width() : tile_.width() * columns_;
    }
    int Height() const {
        return arrangement_ ? arrangement_->size.height() : tile_.height() * rows_;
    }
    QSize Size() const { return {Width(), Height()}; }

    /// Null where the picture is a grid.
    const Arrangement* Arranged() const { return arrangement_.get(); }

    /// Changes when other pixels are shown and when the same ones are changed in place; pictures
    /// that share their tile may differ in their grid.
    qint64 Key() const { return arrangement_ ? arrangementKey_ : tile_.cacheKey(); }

    /// How many photos the picture shows.
    int PhotoCount() const { return arrangement_ ? arrangement_->photos : columns_ * rows_; }

    /// Null for an arrangement.
    const QImage& Tile() const { return tile_; }
    /// The tile; of an arrangement, which has none, the picture unrolled. Throws platform::Error
    /// where memory is short.
    QImage TileOrWhole() const { return arrangement_ ? ToImage() : tile_; }
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

    /// Memory that the tile, or the pictures of an arrangement, take.
    qsizetype ByteCount() const;

 private:
    QImage tile_;
    int columns_ = 1;
    int rows_ = 1;
    std::shared_ptr<const Arrangement> arrangement_;
    qint64 arrangementKey_ = 0;
};

}  // namespace kadrona::imaging
