#include "imaging/metadata/IptcFile.h"

#include <QDir>
#include <QtEndian>
#include <algorithm>
#include <vector>

#include "imaging/metadata/PhotoshopBlock.h"
#include "platform/AtomicFile.h"
#include "platform/ByteReader.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

constexpr uchar FirstApplication = 0xe0;
constexpr uchar LastApplication = 0xef;
constexpr uchar Photoshop = 0xed;
constexpr uchar StartOfScan = 0xda;

/// Far more than any photo takes.
constexpr qint64 LargestFile = 1LL << 30;
constexpr size_t MostSegments = 100'000;

struct Segment {
    uchar marker = 0;
    /// What follows the length.
    QByteArrayView content;
    /// With the marker and all fill bytes before it.
    QByteArrayView whole;

    bool IsPhotoshop() const {
        return marker == Photoshop && content.startsWith(PhotoshopSignature);
    }
    bool IsApplication() const { return marker >= FirstApplication && marker <= LastApplication; }
};

/// What comes before the first scan, and where that begins.
struct Header {
    std::vector<Segment> segments;
    qsizetype scan = 0;
};

Header ReadHeader(QByteArrayView jpeg) {
    Header header;
    platform::ByteReader reader(jpeg, platform::ByteOrder::BigEndian);
    if (reader.Read<quint16>() != 0xffd8) {
        throw platform::OutOfBytes();
    }
    while (true) {
        header.scan = reader.Position();
        if (reader.Read<quint8>() != 0xff) {
            throw platform::OutOfBytes();
        }
        Segment segment;
        while ((segment.marker = reader.Read<quint8>()) == 0xff) {
        }
        if (segment.marker == StartOfScan) {
            return header;
        }
        segment.content = reader.Take(qint64{reader.Read<quint16>()} - 2);
        segment.whole = jpeg.sliced(header.scan, reader.Position() - header.scan);
        header.segments.push_back(segment);
        if (header.segments.size() > MostSegments) {
            throw platform::OutOfBytes();
        }
    }
}

QByteArray PhotoshopBlock(const Header& header) {
    QByteArray block;
    for (const Segment& segment : header.segments) {
        if (segment.IsPhotoshop()) {
            block.append(segment.content.sliced(PhotoshopSignature.size()));
        }
    }
    return block;
}

/// The block as it stands in a JPEG file.
QByteArray EncodedSegments(QByteArrayView block) {
    QByteArray encoded;
    for (const QByteArray& segment : PhotoshopSegments(block)) {
        const auto length = qToBigEndian(static_cast<quint16>(segment.size() + 2));
        encoded.append("\xff\xed", 2);
        encoded.append(reinterpret_cast<const char*>(&length), sizeof length);
        encoded.append(segment);
    }
    return encoded;
}

}  // namespace

QByteArray WithIptc(QByteArrayView jpeg, const IptcItems& items) try {
    const Header header = ReadHeader(jpeg);
    const QByteArray block =
        EncodedSegments(WithIptcStream(PhotoshopBlock(header), EncodeIptc(items)));
    QByteArray changed = jpeg.first(2).toByteArray();
    changed.reserve(jpeg.size() + block.size());
    // At the place of the old block, or behind the other applications' segments.
    bool written = false;
    const bool hadOne = std::any_of(header.segments.begin(), header.segments.end(),
                                    [](const Segment& segment) { return segment.IsPhotoshop(); });
    for (const Segment& segment : header.segments) {
        if (!written && (hadOne ? segment.IsPhotoshop() : !segment.IsApplication())) {
            changed.append(block);
            written = true;
        }
        if (!segment.IsPhotoshop()) {
            changed.append(segment.whole);
        }
    }
    if (!written) {
        changed.append(block);
    }
    changed.append(jpeg.sliced(header.scan));
    return changed;
} catch (const platform::OutOfBytes&) {
    throw platform::Error(u"Die Datei ist kein JPEG-Bild oder beschädigt."_s);
}

void RewriteIptc(const QString& path, const IptcItems& items) {
    const QByteArray jpeg = platform::ReadWholeFile(path, LargestFile);
    QByteArray changed;
    try {
        changed = WithIptc(jpeg, items);
    } catch (const platform::Error& error) {
        throw platform::FileError(
            u"Die Schlüsselworte konnten nicht in die Datei „%1“ geschrieben werden: %2"_s.arg(
                QDir::toNativeSeparators(path), error.Text()));
    }
    platform::WriteFileAtomically(path, changed);
}

}  // namespace kadrona::imaging
