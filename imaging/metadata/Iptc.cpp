#include "imaging/metadata/Iptc.h"

#include <QtEndian>
#include <algorithm>
#include <iterator>
#include <optional>

#include "platform/ByteReader.h"
#include "platform/TextDecoding.h"

namespace kadrona::imaging {

namespace {

constexpr uchar TagMarker = 0x1c;

/// Up to here two bytes tell a length; above, the highest bit of the two is set and the others
/// count the bytes of the length that follows.
constexpr qsizetype LongestStandardValue = 0x7fff;
constexpr int ExtendedLength = 0x8000;

const IptcItem CharacterSet{1, 90, QByteArrayLiteral("\x1b%G")};

bool IsCharacterSet(const IptcItem& item) {
    return item.record == CharacterSet.record && item.dataset == CharacterSet.dataset;
}

/// Record 2 holds texts but for its version, the rasterized caption and the preview.
bool IsText(int record, int dataset) {
    const bool binary = dataset == 0 || dataset == 125 || (dataset >= 200 && dataset <= 202);
    return record == 2 && !binary;
}

/// Without the two characters that are no part of a text.
QByteArray TextValue(QString text) {
    return text.remove(QChar::Null).remove(QChar::ByteOrderMark).toUtf8();
}

qint64 ReadLength(platform::ByteReader& reader) {
    const int length = reader.Read<quint16>();
    if (length < ExtendedLength) {
        return length;
    }
    const int bytes = length - ExtendedLength;
    if (bytes > 4) {
        throw platform::OutOfBytes();
    }
    qint64 extended = 0;
    for (int i = 0; i < bytes; ++i) {
        extended = extended << 8 | reader.Read<quint8>();
    }
    return extended;
}

/// Nothing where the stream ends or turns to nonsense.
std::optional<IptcItem> ReadItem(platform::ByteReader& reader) try {
    if (reader.Read<quint8>() != TagMarker) {
        return {};
    }
    IptcItem item;
    item.record = reader.Read<quint8>();
    item.dataset = reader.Read<quint8>();
    item.value = reader.Take(ReadLength(reader)).toByteArray();
    if (IsText(item.record, item.dataset)) {
        item.value = TextValue(platform::DecodeText(item.value));
    }
    return item;
} catch (const platform::OutOfBytes&) {
    return {};
}

void AppendBigEndian(QByteArray& stream, auto number) {
    number = qToBigEndian(number);
    stream.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void AppendItem(QByteArray& stream, const IptcItem& item) {
    stream.append(static_cast<char>(TagMarker));
    stream.append(static_cast<char>(item.record));
    stream.append(static_cast<char>(item.dataset));
    if (item.value.size() <= LongestStandardValue) {
        AppendBigEndian(stream, static_cast<quint16>(item.value.size()));
    } else {
        AppendBigEndian(stream, static_cast<quint16>(ExtendedLength | sizeof(quint32)));
        AppendBigEndian(stream, static_cast<quint32>(item.value.size()));
    }
    stream.append(item.value);
}

}  // namespace

IptcItems IptcItems::Own() const {
    IptcItems own;
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(own.items_),
                 [](const IptcItem& item) { return item.own; });
    return own;
}

int IptcItems::IndexOf(int record, int dataset) const {
    for (size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].record == record && items_[i].dataset == dataset) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int IptcItems::AddText(int record, int dataset, const QString& text) {
    items_.push_back({record, dataset, TextValue(text), true});
    return static_cast<int>(items_.size()) - 1;
}

void IptcItems::SetText(int index, const QString& text) {
    IptcItem& item = items_.at(static_cast<size_t>(index));
    item.value = TextValue(text);
    item.own = true;
}

QString IptcItems::Text(int index) const {
    return QString::fromUtf8(items_.at(static_cast<size_t>(index)).value);
}

IptcItems DecodeIptc(QByteArrayView stream) {
    constexpr size_t MostItems = 100'000;  // each takes far more memory than its bytes
    std::vector<IptcItem> items;
    platform::ByteReader reader(stream, platform::ByteOrder::BigEndian);
    for (auto item = ReadItem(reader); item && items.size() < MostItems; item = ReadItem(reader)) {
        items.push_back(*std::move(item));
    }
    return IptcItems(std::move(items));
}

QByteArray EncodeIptc(const IptcItems& items) {
    QByteArray stream;
    if (items.IsEmpty()) {
        return stream;
    }
    AppendItem(stream, CharacterSet);
    for (const IptcItem& item : items.Items()) {
        if (!IsCharacterSet(item)) {
            AppendItem(stream, item);
        }
    }
    return stream;
}

}  // namespace kadrona::imaging
