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

/// Byte after byte, from where the device is; a block is read at once.
class ByteStream {
 public:
    explicit ByteStream(QIODevice& device) : device_(device) {}

    /// Throws platform::OutOfBytes at the end.
    quint8 Next() {
        if (place_ == block_.size()) {
            constexpr qint64 BlockSize = 65'536;
            block_ = device_.read(BlockSize);
            place_ = 0;
            if (block_.isEmpty()) {
                throw platform::OutOfBytes();
            }
        }
        return static_cast<quint8>(block_[place_++]);
    }
    void Skip(int count) {
        for (int i = 0; i < count; ++i) {
            Next();
        }
    }

 private:
    QIODevice& device_;
    QByteArray block_;
    qsizetype place_ = 0;
};

/// Whether runs of pixels come to the last row, with or without the mark of the end behind it.
bool RunsReachLastRow(QIODevice& device, const BitmapLayout& layout) {
    enum Escape { EndOfRow, EndOfPicture, Move };  // behind 0; larger ones count single pixels
    ByteStream stream(device);
    qint64 row = 0;
    qint64 column = 0;
    while (row < layout.height && (row < layout.height - 1 || column < layout.width)) {
        const int run = stream.Next();
        const int value = stream.Next();
        if (run > 0) {
            column += run;
        } else if (value == EndOfRow) {
            ++row;
            column = 0;
        } else if (value == EndOfPicture) {
            return row == layout.height - 1;
        } else if (value == Move) {
            column += stream.Next();
            row += stream.Next();
        } else {
            column += value;
            const int bytes = (value * layout.bitsPerPixel + 7) / 8;
            stream.Skip(bytes + bytes % 2);
        }
    }
    return true;
}

bool IsCompleteBmp(QIODevice& device) {
    constexpr qint64 FileHeaderSize = 14;
    constexpr qint64 LayoutSize = 20;
    constexpr quint32 RunLength8 = 1;
    constexpr quint32 RunLength4 = 2;
    const QByteArray header = Next(device, FileHeaderSize + LayoutSize);
    platform::ByteReader reader(header);
    reader.Seek(10);
    const auto pixels = reader.Read<quint32>();
    const BitmapLayout layout = ReadBitmapLayout(QByteArrayView(header).sliced(FileHeaderSize));
    if ((layout.compression == RunLength8 && layout.bitsPerPixel == 8) ||
        (layout.compression == RunLength4 && layout.bitsPerPixel == 4)) {
        device.seek(pixels);
        return RunsReachLastRow(device, layout);
    }
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
