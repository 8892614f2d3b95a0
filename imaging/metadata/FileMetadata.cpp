#include "imaging/metadata/FileMetadata.h"

#include <zlib.h>

#include <QBuffer>
#include <cmath>

#include "imaging/metadata/Jpeg2000Boxes.h"
#include "imaging/metadata/TiffFields.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

using platform::BytesAt;

namespace {

constexpr double MillimetresPerInch = 25.4;
constexpr qint64 MaximumExifSize = 1 << 20;

DotsPerInch FromDotsPerMetre(double dotsPerMetre) {
    return ResolutionFrom(dotsPerMetre * MillimetresPerInch / 1000);
}

FileMetadata ReadTiff(QIODevice& device) {
    constexpr quint16 Short = 3;
    constexpr quint16 UnsignedFraction = 5;
    constexpr quint32 Inch = 2;
    constexpr quint32 Centimetre = 3;
    quint32 orientation = 1;
    quint32 unit = Inch;  // the default of TIFF 6.0
    double resolution = 0;
    const TiffFields tiff(device);
    for (const TiffField& field : tiff.Directory(tiff.First())) {
        if (field.tag == 0x0112 && field.type == Short) {
            orientation = tiff.Number(field);
        } else if (field.tag == 0x0128 && field.type == Short) {
            unit = tiff.Number(field);
        } else if (field.tag == 0x011a && field.type == UnsignedFraction) {
            resolution = tiff.Fraction(field);
        }
    }
    FileMetadata metadata{OrientationFrom(static_cast<int>(orientation)), {}};
    if (unit == Inch) {
        metadata.resolution = ResolutionFrom(resolution);
    } else if (unit == Centimetre) {
        metadata.resolution = ResolutionFrom(resolution * MillimetresPerInch / 10);
    }
    return metadata;
}

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
    bool hasExif = false;  // there is one at most; each costs time
    DotsPerInch fromExif;
    ForEachPngChunk(device, [&](const QByteArray& type, qint64 position, quint32 length) {
        if (type == "pHYs" && length == 9) {
            const QByteArray density = BytesAt(device, position, 9);
            if (density.back() == 1) {  // the unit is the metre
                metadata.resolution = FromDotsPerMetre(
                    platform::ByteReader(density, platform::ByteOrder::BigEndian).Read<quint32>());
            }
        } else if (type == "eXIf" && length <= MaximumExifSize && !hasExif) {
            hasExif = true;
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
        return ReadTiff(device);
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
    return ReadTiff(buffer);
} catch (const platform::OutOfBytes&) {
    return {};
}

}  // namespace kadrona::imaging
