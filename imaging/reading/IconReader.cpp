#include "imaging/reading/IconReader.h"

#include <QBuffer>
#include <algorithm>

#include "imaging/reading/PluginReader.h"
#include "imaging/reading/PngReader.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

struct Entry {
    int index = 0;
    qint64 area = 0;
    qint64 size = 0;
    qint64 offset = 0;
};

Entry LargestEntry(QIODevice& device) {
    constexpr int EntryBytes = 16;
    device.seek(4);
    const QByteArray head = device.read(2);
    const int count = platform::ByteReader(head).Read<quint16>();
    const QByteArray directory = device.read(qint64{EntryBytes} * count);
    platform::ByteReader reader(directory);
    const auto length = [&reader] {
        const int side = reader.Read<quint8>();
        return qint64{side == 0 ? 256 : side};
    };
    Entry largest;
    for (int i = 0; i < count; ++i) {
        Entry entry{i};
        entry.area = length();
        entry.area *= length();
        reader.Skip(6);
        entry.size = reader.Read<quint32>();
        entry.offset = reader.Read<quint32>();
        if (entry.area > largest.area) {
            largest = entry;
        }
    }
    return largest;
}

}  // namespace

bool IsIcon(QByteArrayView start) {
    return start.startsWith(QByteArrayView("\0\0\1\0", 4));
}

DecodedImage ReadIcon(const ReadTask& task) try {
    QIODevice& device = task.Device();
    const Entry entry = LargestEntry(device);
    device.seek(entry.offset);
    if (!IsPng(device.peek(8))) {
        device.seek(0);
        return ReadByPlugin(task, "ico", entry.index);
    }
    // The device makes room for all that it is asked for before it reads.
    constexpr qint64 MostBytes = 40'000'000;
    const qint64 size = std::min(entry.size, device.size() - entry.offset);
    if (size > MostBytes) {
        task.Fail(TooLargeFileReason(MostBytes));
    }
    QByteArray bytes = device.read(size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return ReadPng(task.Within(buffer));
} catch (const platform::OutOfBytes&) {
    task.Fail(IncompleteFileReason());
}

}  // namespace kadrona::imaging
