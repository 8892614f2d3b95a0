#pragma once

#include <QImage>
#include <vector>

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

    int Width() const { return size_.width(); }
    int Height() const { return size_.height(); }

    /// Length of a row, without any padding.
    qint64 BytesPerRow() const { return qint64{BytesPerPixel} * Width(); }

    /// After so many rows the picture repeats.
    int Period() const { return period_; }

    /// Writes BytesPerRow() bytes of row `y` to `target`.
    void CopyRow(int y, uchar* target) const;

 private:
    void CopyPicture(const QImage& picture, int y, uchar* target) const;
    void CopyArrangedRow(const Arrangement& arrangement, int y, uchar* target) const;
    void CopyMark(const Arrangement::Mark& mark, uchar* row) const;

    QSize size_;
    int period_;
    ChannelOrder order_;
    /// Of a grid.
    QImage tile_;
    int columns_;
    /// Holds an arrangement; empty for a grid.
    Pixels arranged_;
};

}  // namespace kadrona::imaging
