#include "imaging/metadata/PhotoshopBlock.h"

#include <QtEndian>
#include <algorithm>
#include <optional>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

constexpr quint16 IptcNumber = 0x0404;

struct Resource {
    quint16 number = 0;
    QByteArrayView content;
    /// All of it, as it stands in the block.
    QByteArrayView whole;
};

/// Nothing where the block ends or turns to nonsense.
std::optional<Resource> ReadResource(QByteArrayView block, platform::ByteReader& reader) try {
    const qsizetype begin = reader.Position();
    // Other programs have signatures of their own.
    constexpr QByteArrayView Signatures("8BIMPHUTDCSRAgHgMeSa");
    const qsizetype signature = Signatures.indexOf(reader.Take(4));
    if (signature < 0 || signature % 4 != 0) {
        return {};
    }
    Resource resource;
    resource.number = reader.Read<quint16>();
    const int name = reader.Read<quint8>();
    reader.Skip(name | 1);  // with the byte of its length an even number
    const qint64 length = reader.Read<quint32>();
    resource.content = reader.Take(length);
    reader.Skip(std::min<qint64>(length % 2, reader.Remaining()));
    resource.whole = block.sliced(begin, reader.Position() - begin);
    return resource;
} catch (const platform::OutOfBytes&) {
    return {};
}

void AppendIptc(QByteArray& block, QByteArrayView stream) {
    const quint32 length = qToBigEndian(static_cast<quint32>(stream.size()));
    block.append("8BIM\x04\x04\0\0", 8);
    block.append(reinterpret_cast<const char*>(&length), sizeof length);
    block.append(stream);
    block.append(stream.size() % 2, '\0');
}

}  // namespace

QByteArrayView IptcStream(QByteArrayView block) {
    platform::ByteReader reader(block, platform::ByteOrder::BigEndian);
    while (const auto resource = ReadResource(block, reader)) {
        if (resource->number == IptcNumber) {
            return resource->content;
        }
    }
    return {};
}

QByteArray WithIptcStream(QByteArrayView block, QByteArrayView stream) {
    QByteArray changed;
    bool written = stream.isEmpty();
    platform::ByteReader reader(block, platform::ByteOrder::BigEndian);
    while (const auto resource = ReadResource(block, reader)) {
        if (resource->number != IptcNumber) {
            changed.append(resource->whole);
            changed.append(changed.size() % 2, '\0');
        } else if (!written) {
            AppendIptc(changed, stream);
            written = true;
        }
    }
    if (!written) {
        AppendIptc(changed, stream);
    }
    return changed;
}

std::vector<QByteArray> PhotoshopSegments(QByteArrayView block) {
    constexpr qsizetype Longest = 0xffff - 2 - PhotoshopSignature.size();
    std::vector<QByteArray> segments;
    while (!block.isEmpty()) {
        const qsizetype length = std::min(Longest, block.size());
        segments.push_back(PhotoshopSignature.toByteArray().append(block.first(length)));
        block = block.sliced(length);
    }
    return segments;
}

}  // namespace kadrona::imaging
