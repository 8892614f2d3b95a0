#include "platform/ByteReader.h"

#include <QIODevice>

namespace kadrona::platform {

QByteArray BytesAt(QIODevice& device, qint64 position, qint64 count) {
    if (position > device.size() - count || !device.seek(position)) {
        throw OutOfBytes();
    }
    QByteArray bytes = device.read(count);
    if (bytes.size() != count) {
        throw OutOfBytes();
    }
    return bytes;
}

}  // namespace kadrona::platform
