#pragma once

#include <QImage>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

enum class ChannelOrder { RedFirst, BlueFirst };

/// A picture row by row, as the file formats take it: 3 bytes a pixel, a grid unrolled to the
/// right, alpha laid over white. Safe to read from several threads.
class RowSource {
 public:
    static constexpr int BytesPerPixel = 3;

    /// `pixels` is not empty. Throws platform::Error where memory is short.
    RowSource(const Pixels& pixels, ChannelOrder order);

    int Width() const { return tile_.width() * columns_; }
    int Height() const { return tile_.height() * rows_; }

    /// Length of a row, without any padding.
    qint64 BytesPerRow() const { return qint64{BytesPerPixel} * Width(); }

    /// After so many rows the picture repeats.
    int Period() const { return tile_.height(); }

    /// Writes BytesPerRow() bytes of row `y` to `target`.
    void CopyRow(int y, uchar* target) const;

 private:
    QImage tile_;
    int columns_;
    int rows_;
    ChannelOrder order_;
};

}  // namespace kadrona::imaging
