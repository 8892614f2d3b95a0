#include "imaging/reading/FileCompleteness.h"

#include "imaging/metafile/DeviceIndependentBitmap.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

/// The next `count` bytes.
QByteArray Next(QIODevice& device, qint64 count) {
    QByteArray bytes = device.read(count);
    if (bytes.size() != count) {
        throw platform::OutOfBytes();
    }
    return bytes;
}

quint8 NextByte(QIODevice& device) {
    return static_cast<quint8>(Next(device, 1)[0]);
}

bool IsCompleteBmp(QIODevice& device) {
    constexpr qint64 FileHeaderSize = 14;
    constexpr qint64 LayoutSize = 20;
    const QByteArray header = Next(device, FileHeaderSize + LayoutSize);
    platform::ByteReader reader(header);
    reader.Seek(10);
    const auto pixels = reader.Read<quint32>();
    const BitmapLayout layout = ReadBitmapLayout(QByteArrayView(header).sliced(FileHeaderSize));
    return device.size() - qint64{pixels} >= MinimumBytes(layout);
}

/// Passes by the global or local colour table that the flags announce.
void SkipColourTable(QIODevice& device, quint8 flags) {
    constexpr quint8 HasTable = 0x80;
    if (flags & HasTable) {
        Next(device, qint64{3} << ((flags & 7) + 1));
    }
}

void SkipSubBlocks(QIODevice& device) {
    while (const quint8 length = NextByte(device)) {
        Next(device, length);
    }
}

/// Walks to the end of the first picture's data.
bool IsCompleteGif(QIODevice& device) {
    constexpr quint8 Extension = 0x21;
    constexpr quint8 Picture = 0x2c;
    constexpr qsizetype HeaderSize = 13;
    const QByteArray header = Next(device, HeaderSize);
    SkipColourTable(device, static_cast<quint8>(header[10]));
    quint8 kind = NextByte(device);
    for (; kind == Extension; kind = NextByte(device)) {
        NextByte(device);
        SkipSubBlocks(device);
    }
    if (kind != Picture) {
        return false;
    }
    SkipColourTable(device, static_cast<quint8>(Next(device, 9)[8]));
    NextByte(device);
    SkipSubBlocks(device);
    return true;
}

}  // namespace

bool IsComplete(QIODevice& device) {
    const qint64 position = device.pos();
    device.seek(0);
    const QByteArray signature = device.peek(4);
    bool complete = true;
    try {
        if (signature.startsWith("BM")) {
            complete = IsCompleteBmp(device);
        } else if (signature == "GIF8") {
            complete = IsCompleteGif(device);
        }
    } catch (const platform::OutOfBytes&) {
        complete = false;
    }
    device.seek(position);
    return complete;
}

}  // namespace kadrona::imaging
