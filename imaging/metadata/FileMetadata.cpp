#include "imaging/metadata/FileMetadata.h"

#include <zlib.h>

#include <QBuffer>
#include <cmath>
#include <optional>

#include "imaging/metadata/Jpeg2000Boxes.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

constexpr double MillimetresPerInch = 25.4;
constexpr qint64 MaximumExifSize = 1 << 20;

/// Exactly `count` bytes at `position`.
QByteArray BytesAt(QIODevice& device, qint64 position, qint64 count) {
    if (position > device.size() - count || !device.seek(position)) {
        throw platform::OutOfBytes();
    }
    QByteArray bytes = device.read(count);
    if (bytes.size() != count) {
        throw platform::OutOfBytes();
    }
    return bytes;
}

DotsPerInch FromDotsPerMetre(double dotsPerMetre) {
    return ResolutionFrom(dotsPerMetre * MillimetresPerInch / 1000);
}

/// The four tags of a TIFF directory that we use.
class TiffDirectory {
 public:
    explicit TiffDirectory(QIODevice& device) : device_(device) {
        const QByteArray header = BytesAt(device, 0, 8);
        order_ = header.startsWith('M') ? platform::ByteOrder::BigEndian
                                        : platform::ByteOrder::LittleEndian;
        platform::ByteReader reader(header, order_);
        reader.Skip(2);
        if (reader.Read<quint16>() != 42) {
            throw platform::OutOfBytes();
        }
        ReadEntries(reader.Read<quint32>());
    }

    FileMetadata Metadata() const {
        constexpr int Inch = 2;
        constexpr int Centimetre = 3;
        FileMetadata metadata{OrientationFrom(orientation_), {}};
        if (unit_ == Inch) {
            metadata.resolution = ResolutionFrom(resolution_);
        } else if (unit_ == Centimetre) {
            metadata.resolution = ResolutionFrom(resolution_ * MillimetresPerInch / 10);
        }
        return metadata;
    }

 private:
    void ReadEntries(quint32 position) {
        constexpr qint64 EntrySize = 12;
        const int count =
            platform::ByteReader(BytesAt(device_, position, 2), order_).Read<quint16>();
        const QByteArray entries = BytesAt(device_, position + 2LL, count * EntrySize);
        platform::ByteReader reader(entries, order_);
        for (int i = 0; i < count; ++i) {
            reader.Seek(i * EntrySize);
            ReadEntry(reader);
        }
    }

    void ReadEntry(platform::ByteReader& entry) {
        const auto tag = entry.Read<quint16>();
        const auto type = entry.Read<quint16>();
        entry.Skip(4);
        if (tag == 0x0112) {
            orientation_ = Integer(entry, type).value_or(orientation_);
        } else if (tag == 0x0128) {
            unit_ = Integer(entry, type).value_or(unit_);
        } else if (tag == 0x011a) {
            resolution_ = Rational(entry, type).value_or(resolution_);
        }
    }

    static std::optional<int> Integer(platform::ByteReader& entry, int type) {
        constexpr int Short = 3;
        return type == Short ? std::optional<int>(entry.Read<quint16>()) : std::nullopt;
    }

    std::optional<double> Rational(platform::ByteReader& entry, int type) {
        constexpr int UnsignedRational = 5;
        if (type != UnsignedRational) {
            return std::nullopt;
        }
        const QByteArray bytes = BytesAt(device_, entry.Read<quint32>(), 8);
        platform::ByteReader reader(bytes, order_);
        const auto numerator = reader.Read<quint32>();
        const auto denominator = reader.Read<quint32>();
        return denominator == 0 ? 0 : double(numerator) / denominator;
    }

    QIODevice& device_;
    platform::ByteOrder order_ = platform::ByteOrder::LittleEndian;
    int orientation_ = 1;
    int unit_ = 2;  // the default of TIFF 6.0
    double resolution_ = 0;
};

/// Empty ones would keep a reader busy for minutes.
constexpr int MostChunks = 200'000;

/// Calls `visit(type, position of the content, its length)` for each chunk until it returns false.
/// Ends at IEND at the latest, or by platform::OutOfBytes where the file does.
template <typename Visit>
void ForEachPngChunk(QIODevice& device, Visit visit) {
    qint64 position = 8;
    for (int i = 0; i < MostChunks; ++i) {
        const QByteArray header = BytesAt(device, position, 8);
        const auto length =
            platform::ByteReader(header, platform::ByteOrder::BigEndian).Read<quint32>();
        const QByteArray type = header.sliced(4);
        if (type == "IEND" || !visit(type, position + 8, length)) {
            return;
        }
        position += 12LL + length;
    }
}

FileMetadata ReadPng(QIODevice& device) {
    FileMetadata metadata;
    DotsPerInch fromExif;
    ForEachPngChunk(device, [&](const QByteArray& type, qint64 position, quint32 length) {
        if (type == "pHYs" && length == 9) {
            const QByteArray density = BytesAt(device, position, 9);
            if (density.back() == 1) {  // the unit is the metre
                metadata.resolution = FromDotsPerMetre(
                    platform::ByteReader(density, platform::ByteOrder::BigEndian).Read<quint32>());
            }
        } else if (type == "eXIf" && length <= MaximumExifSize) {
            const FileMetadata exif = ReadExif(BytesAt(device, position, length));
            metadata.orientation = exif.orientation;
            fromExif = exif.resolution;
        }
        return true;
    });
    if (metadata.resolution.value == 0) {
        metadata.resolution = fromExif;
    }
    return metadata;
}

/// What a stream of zlib holds; nothing where it is damaged or holds more than `maximumSize`.
QByteArray Inflated(QByteArrayView stream, uLongf maximumSize) {
    QByteArray inflated;
    for (uLongf size = 1 << 16; size <= maximumSize; size *= 4) {
        inflated.resize(static_cast<qsizetype>(size));
        uLongf length = size;
        const int result = uncompress(reinterpret_cast<Bytef*>(inflated.data()), &length,
                                      reinterpret_cast<const Bytef*>(stream.data()),
                                      static_cast<uLong>(stream.size()));
        if (result == Z_OK) {
            return inflated.first(static_cast<qsizetype>(length));
        }
        if (result != Z_BUF_ERROR) {
            break;
        }
    }
    return {};
}

FileMetadata ReadWebP(QIODevice& device) {
    qint64 position = 12;
    for (int i = 0; i < MostChunks; ++i) {
        const QByteArray header = BytesAt(device, position, 8);
        const auto length = platform::ByteReader(QByteArrayView(header).sliced(4)).Read<quint32>();
        if (header.startsWith("EXIF") && length <= MaximumExifSize) {
            const QByteArray block = BytesAt(device, position + 8, length);
            return ReadExif(block.startsWith("Exif") ? QByteArrayView(block).sliced(6)
                                                     : QByteArrayView(block));
        }
        position += 8LL + length + length % 2;
    }
    return {};
}

FileMetadata ReadBmp(QIODevice& device) {
    constexpr int ShortHeaderSize = 12;
    const QByteArray header = BytesAt(device, 0, 46);
    platform::ByteReader reader(header);
    reader.Seek(14);
    if (reader.Read<quint32>() <= ShortHeaderSize) {
        return {};
    }
    reader.Seek(38);
    return {Orientation::Upright, FromDotsPerMetre(reader.Read<qint32>())};
}

FileMetadata ReadJpeg2000(QIODevice& device) {
    constexpr QByteArrayView Mark("JpgTiffExif->JP2");
    const auto box = FindJpeg2000Box(device, "uuid", Mark);
    if (!box || box->length > MaximumExifSize) {
        return {};
    }
    return ReadExif(BytesAt(device, box->position + Mark.size(), box->length - Mark.size()));
}

}  // namespace

DotsPerInch ResolutionFrom(double dotsPerInch) {
    constexpr double Maximum = 65535;  // what JFIF and EXIF can say
    if (!(dotsPerInch >= 0.5 && dotsPerInch <= Maximum)) {
        return {};
    }
    return {static_cast<int>(std::lround(dotsPerInch))};
}

FileMetadata ReadFileMetadata(QIODevice& device) try {
    const QByteArray start = BytesAt(device, 0, 12);
    if (start.startsWith("\x89PNG\r\n\x1a\n")) {
        return ReadPng(device);
    }
    if (start.startsWith(QByteArrayView("II*\0", 4)) ||
        start.startsWith(QByteArrayView("MM\0*", 4))) {
        return TiffDirectory(device).Metadata();
    }
    if (start.startsWith("RIFF") && start.endsWith("WEBP")) {
        return ReadWebP(device);
    }
    if (start.startsWith("BM")) {
        return ReadBmp(device);
    }
    if (start.sliced(4).startsWith("jP  ")) {
        return ReadJpeg2000(device);
    }
    return {};
} catch (const platform::OutOfBytes&) {
    return {};
}

QByteArray ReadPngProfile(QIODevice& device) try {
    constexpr quint32 MaximumStreamSize = 1 << 22;
    constexpr uLongf MaximumProfileSize = 1 << 24;
    QByteArray profile;
    ForEachPngChunk(device, [&](const QByteArray& type, qint64 position, quint32 length) {
        if (type != "iCCP") {
            return type != "IDAT";
        }
        if (length > MaximumStreamSize) {
            return false;
        }
        const QByteArray content = BytesAt(device, position, length);
        // A name, a null, the kind of compression.
        if (const qsizetype end = content.indexOf('\0'); end >= 0 && end + 2 <= content.size()) {
            profile = Inflated(QByteArrayView(content).sliced(end + 2), MaximumProfileSize);
        }
        return false;
    });
    return profile;
} catch (const platform::OutOfBytes&) {
    return {};
}

FileMetadata ReadExif(QByteArrayView block) try {
    QByteArray bytes = QByteArray::fromRawData(block.data(), block.size());
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return TiffDirectory(buffer).Metadata();
} catch (const platform::OutOfBytes&) {
    return {};
}

}  // namespace kadrona::imaging
