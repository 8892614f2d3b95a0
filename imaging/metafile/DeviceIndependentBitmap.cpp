#include "imaging/metafile/DeviceIndependentBitmap.h"

#include <QtEndian>
#include <cstdlib>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

constexpr quint32 CoreHeaderSize = 12;
constexpr quint32 InfoHeaderSize = 40;
constexpr quint32 Uncompressed = 0;
constexpr quint32 RunLength8 = 1;
constexpr quint32 RunLength4 = 2;
constexpr quint32 BitFields = 3;

qint64 Stride(const BitmapLayout& layout) {
    return (layout.width * layout.bitsPerPixel + 31) / 32 * 4;
}

bool IsKnownKind(const BitmapLayout& layout) {
    switch (layout.compression) {
        case Uncompressed:
            return layout.bitsPerPixel == 1 || layout.bitsPerPixel == 4 ||
                   layout.bitsPerPixel == 8 || layout.bitsPerPixel == 16 ||
                   layout.bitsPerPixel == 24 || layout.bitsPerPixel == 32;
        case RunLength8:
            return layout.bitsPerPixel == 8;
        case RunLength4:
            return layout.bitsPerPixel == 4;
        case BitFields:
            return layout.bitsPerPixel == 16 || layout.bitsPerPixel == 32;
        default:
            return false;
    }
}

/// Qt reads the bitmap once it looks like a file.
QImage DecodeAsFile(const BitmapView& bitmap) {
    constexpr qsizetype FileHeaderSize = 14;
    QByteArray file;
    file.reserve(FileHeaderSize + bitmap.information.size() + bitmap.bits.size());
    file.append("BM");
    file.append(8, '\0');
    file.append(4, '\0');
    qToLittleEndian(static_cast<quint32>(FileHeaderSize + bitmap.information.size()),
                    file.data() + 10);
    file.append(bitmap.information);
    file.append(bitmap.bits);
    return QImage::fromData(file, "BMP");
}

QImage DecodePremultiplied(const BitmapView& bitmap, const BitmapLayout& layout) {
    const QImage view(reinterpret_cast<const uchar*>(bitmap.bits.data()),
                      static_cast<int>(layout.width), static_cast<int>(layout.height),
                      Stride(layout), QImage::Format_ARGB32_Premultiplied);
    return layout.bottomUp ? view.mirrored() : view.copy();
}

}  // namespace

BitmapLayout ReadBitmapLayout(QByteArrayView information) {
    platform::ByteReader reader(information);
    BitmapLayout layout;
    const auto headerSize = reader.Read<quint32>();
    if (headerSize == CoreHeaderSize) {
        layout.width = reader.Read<quint16>();
        layout.height = reader.Read<quint16>();
        reader.Skip(2);
        layout.bitsPerPixel = reader.Read<quint16>();
        return layout;
    }
    layout.width = reader.Read<qint32>();
    const qint64 height = reader.Read<qint32>();
    layout.height = std::abs(height);
    layout.bottomUp = height > 0;
    reader.Skip(2);
    layout.bitsPerPixel = reader.Read<quint16>();
    layout.compression = reader.Read<quint32>();
    return layout;
}

qint64 MinimumBytes(const BitmapLayout& layout) {
    if ((layout.compression != Uncompressed && layout.compression != BitFields) ||
        layout.width <= 0 || layout.height <= 0) {
        return 0;
    }
    // No file is that large, and the product stays in range.
    constexpr qint64 Impossible = qint64{1} << 62;
    if (Stride(layout) > Impossible / layout.height) {
        return Impossible;
    }
    return Stride(layout) * (layout.height - 1) + (layout.width * layout.bitsPerPixel + 7) / 8;
}

BitmapView SplitPackedBitmap(QByteArrayView packed) {
    const BitmapLayout layout = ReadBitmapLayout(packed);
    platform::ByteReader reader(packed);
    const auto headerSize = reader.Read<quint32>();
    qint64 colours = layout.bitsPerPixel <= 8 ? qint64{1} << layout.bitsPerPixel : 0;
    qint64 masks = 0;
    if (headerSize >= InfoHeaderSize) {
        reader.Seek(32);
        if (const auto used = reader.Read<quint32>(); used != 0) {
            colours = used;
        }
        if (headerSize == InfoHeaderSize && layout.compression == BitFields) {
            masks = 3;
        }
    }
    const int colourSize = headerSize == CoreHeaderSize ? 3 : 4;
    reader.Seek(0);
    const QByteArrayView information = reader.Take(headerSize + 4 * masks + colourSize * colours);
    return {information, reader.Take(reader.Remaining())};
}

QRectF CountedFromTop(const QRectF& source, QByteArrayView information) {
    const BitmapLayout layout = ReadBitmapLayout(information);
    QRectF counted = source;
    if (layout.bottomUp) {
        counted.moveTop(double(layout.height) - source.y() - source.height());
    }
    return counted;
}

QImage DecodeBitmap(const BitmapView& bitmap, BitmapAlpha alpha, qint64 maximumPixels) {
    const BitmapLayout layout = ReadBitmapLayout(bitmap.information);
    if (!bitmap.hasOwnColours || !IsKnownKind(layout) || layout.width <= 0 || layout.height == 0 ||
        layout.width > maximumPixels / layout.height) {
        return {};
    }
    if (bitmap.bits.size() < MinimumBytes(layout)) {
        throw platform::OutOfBytes();
    }
    if (alpha == BitmapAlpha::Premultiplied && layout.bitsPerPixel == 32) {
        return DecodePremultiplied(bitmap, layout);
    }
    return DecodeAsFile(bitmap);
}

}  // namespace kadrona::imaging
