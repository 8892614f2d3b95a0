#pragma once

#include <QByteArrayView>
#include <QImage>
#include <QRectF>

namespace kadrona::imaging {

/// A device independent bitmap as Windows metafiles embed it: BITMAPINFO (with its colour table)
/// and pixels. Does not own the bytes.
struct BitmapView {
    QByteArrayView information;
    QByteArrayView bits;
    /// False where the colour table refers to a palette elsewhere: such a bitmap is not drawn.
    bool hasOwnColours = true;
};

/// The size and layout that a BITMAPINFO tells, as yet unchecked.
struct BitmapLayout {
    qint64 width = 0;
    qint64 height = 0;
    bool bottomUp = true;
    int bitsPerPixel = 0;
    quint32 compression = 0;
};

/// Throws platform::OutOfBytes where the header is cut off.
BitmapLayout ReadBitmapLayout(QByteArrayView information);

/// What the pixels take at least: without the padding of the last row; 0 where that cannot be told,
/// as for compressed ones.
qint64 MinimumBytes(const BitmapLayout& layout);

/// Splits a packed bitmap, whose pixels follow its colour table. Throws platform::OutOfBytes.
BitmapView SplitPackedBitmap(QByteArrayView packed);

/// Records of whole bitmaps count a source from the row that comes first in memory, which is the
/// bottom one in most: the same source counted from the top. Throws platform::OutOfBytes.
QRectF CountedFromTop(const QRectF& source, QByteArrayView information);

enum class BitmapAlpha { Ignored, Premultiplied };

/// Decodes a bitmap; a null image where it is of an unknown kind or has more than `maximumPixels`.
/// Premultiplied alpha exists in bitmaps of 32 bits a pixel. Throws platform::OutOfBytes where
/// pixels are missing.
QImage DecodeBitmap(const BitmapView& bitmap, BitmapAlpha alpha, qint64 maximumPixels);

}  // namespace kadrona::imaging
