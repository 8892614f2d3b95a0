#include "imaging/metadata/IptcFile.h"

#include <QDir>
#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <utility>
#include <vector>

#include "imaging/metadata/PhotoshopBlock.h"
#include "platform/AtomicFile.h"
#include "platform/ByteReader.h"
#include "platform/Error.h"
#include "platform/RegularFile.h"
#include "platform/SystemReason.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

constexpr uchar FirstApplication = 0xe0;
constexpr uchar LastApplication = 0xef;
constexpr uchar Photoshop = 0xed;
constexpr uchar StartOfScan = 0xda;

/// Far more than any photo takes.
constexpr qint64 LargestFile = 1LL << 30;
constexpr qint64 LargestHeader = 1 << 26;
constexpr qint64 FirstBytes = 1 << 20;
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

/// What comes before the first scan, with `items`, and how many bytes it replaces. Throws
/// platform::OutOfBytes where `start`, the file's first bytes, does not reach as far.
std::pair<QByteArray, qsizetype> ChangedHeader(QByteArrayView start, const IptcItems& items) {
    const Header header = ReadHeader(start);
    const QByteArray block =
        EncodedSegments(WithIptcStream(PhotoshopBlock(header), EncodeIptc(items)));
    QByteArray changed = start.first(2).toByteArray();
    changed.reserve(header.scan + block.size());
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
    return {changed, header.scan};
}

platform::Error NoJpeg() {
    return platform::Error(u"Die Datei ist kein JPEG-Bild oder beschädigt."_s);
}

/// The same of an open file, of which no more is read than that takes.
std::pair<QByteArray, qsizetype> ChangedHeader(QFile& file, const IptcItems& items) {
    QByteArray start;
    for (qint64 bytes = FirstBytes;; bytes *= 4) {
        start += file.read(bytes - start.size());
        try {
            return ChangedHeader(start, items);
        } catch (const platform::OutOfBytes&) {
            if (start.size() < bytes || bytes >= LargestHeader) {
                throw NoJpeg();
            }
        }
    }
}

/// A file system can give up anywhere.
void RequireRead(const QFile& file, const QString& path) {
    if (file.error() != QFileDevice::NoError) {
        throw platform::FileError(u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(
            path, platform::SystemReason(file)));
    }
}

}  // namespace

QByteArray WithIptc(QByteArrayView jpeg, const IptcItems& items) try {
    const auto [header, scan] = ChangedHeader(jpeg, items);
    return header + jpeg.sliced(scan).toByteArray();
} catch (const platform::OutOfBytes&) {
    throw NoJpeg();
}

void RewriteIptc(const QString& path, const IptcItems& items) {
    QFile file;
    const platform::Opening opening = OpenRegularFile(file, path, platform::LastPart::MayBeLink);
    const QString obstacle = !opening                    ? opening.Reason()
                             : file.size() > LargestFile ? u"Sie ist größer als 1 GiB"_s
                                                         : QString();
    if (!obstacle.isEmpty()) {
        throw platform::FileError(
            u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, obstacle));
    }
    std::pair<QByteArray, qsizetype> header;
    try {
        header = ChangedHeader(file, items);
    } catch (const platform::Error& error) {
        RequireRead(file, path);
        throw platform::FileError(
            u"Die Schlüsselworte konnten nicht in die Datei „%1“ geschrieben werden: %2"_s.arg(
                QDir::toNativeSeparators(path), error.Text()));
    }
    platform::AtomicFile changed(path);
    changed.Device().write(header.first);
    file.seek(header.second);
    for (QByteArray part; !(part = file.read(FirstBytes)).isEmpty();) {
        changed.Device().write(part);
    }
    RequireRead(file, path);
    changed.Commit();
}

}  // namespace kadrona::imaging
