#include "imaging/metadata/Jpeg2000Boxes.h"

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

/// The box whose header stands at `position`, of whatever type.
Jpeg2000Box ReadBox(QIODevice& device, qint64 position, QByteArray& type) {
    constexpr quint32 ToTheEndOfTheFile = 0;
    constexpr quint32 LengthFollows = 1;
    device.seek(position);
    const QByteArray header = device.read(16);
    platform::ByteReader reader(header, platform::ByteOrder::BigEndian);
    qint64 length = reader.Read<quint32>();
    type = reader.Take(4).toByteArray();
    qint64 headerBytes = 8;
    if (length == LengthFollows) {
        length = reader.Read<qint64>();
        headerBytes = 16;
    } else if (length == ToTheEndOfTheFile) {
        length = device.size() - position;
    }
    if (length < headerBytes || length > device.size() - position) {
        throw platform::OutOfBytes();
    }
    return {position + headerBytes, length - headerBytes};
}

}  // namespace

std::optional<Jpeg2000Box> FindJpeg2000Box(QIODevice& device, QByteArrayView type,
                                           QByteArrayView start) try {
    constexpr int MostBoxes = 1000;
    qint64 position = 0;
    for (int i = 0; i < MostBoxes && position < device.size(); ++i) {
        QByteArray found;
        const Jpeg2000Box box = ReadBox(device, position, found);
        if (found == type && device.seek(box.position) && device.peek(start.size()) == start) {
            return box;
        }
        position = box.position + box.length;
    }
    return {};
} catch (const platform::OutOfBytes&) {
    return {};
}

}  // namespace kadrona::imaging
