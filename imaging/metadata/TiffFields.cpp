#include "imaging/metadata/TiffFields.h"

#include <array>

namespace kadrona::imaging {

using platform::BytesAt;

namespace {

constexpr quint16 Short = 3;
constexpr qint64 FieldSize = 12;
constexpr qint64 NumberSize = 4;

void RequireValue(const TiffField& field, quint32 index) {
    if (index >= field.count) {
        throw platform::OutOfBytes();
    }
}

}  // namespace

qint64 TiffValueSize(quint16 type) {
    constexpr std::array<quint8, 19> Sizes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < Sizes.size() ? Sizes.at(type) : 0;
}

TiffFields::TiffFields(QIODevice& device, Kind kind) : device_(device) {
    constexpr quint16 OffsetsOf32Bits = 42;
    const QByteArray header = BytesAt(device, 0, 8);
    order_ =
        header.startsWith('M') ? platform::ByteOrder::BigEndian : platform::ByteOrder::LittleEndian;
    platform::ByteReader reader = ReaderOf(header);
    reader.Skip(2);
    if (reader.Read<quint16>() != OffsetsOf32Bits && kind == Kind::Tiff) {
        throw platform::OutOfBytes();
    }
    first_ = reader.Read<quint32>();
}

std::vector<TiffField> TiffFields::Directory(quint32 position) const {
    constexpr qint64 BeforeValue = 8;
    const qint64 begin = position + 2LL;
    const QByteArray number = BytesAt(device_, position, 2);
    const int count = ReaderOf(number).Read<quint16>();
    const QByteArray bytes = BytesAt(device_, begin, count * FieldSize);
    platform::ByteReader reader = ReaderOf(bytes);
    std::vector<TiffField> fields;
    for (int i = 0; i < count; ++i) {
        TiffField field;
        field.tag = reader.Read<quint16>();
        field.type = reader.Read<quint16>();
        field.count = reader.Read<quint32>();
        const auto link = reader.Read<quint32>();
        const bool isLinked = field.count * TiffValueSize(field.type) > NumberSize;
        field.position = isLinked ? link : begin + i * FieldSize + BeforeValue;
        fields.push_back(field);
    }
    return fields;
}

quint32 TiffFields::Following(quint32 position) const {
    const QByteArray number = BytesAt(device_, position, 2);
    const qint64 fields = ReaderOf(number).Read<quint16>() * FieldSize;
    const QByteArray bytes = BytesAt(device_, position + 2 + fields, NumberSize);
    return ReaderOf(bytes).Read<quint32>();
}

quint32 TiffFields::Number(const TiffField& field, quint32 index) const {
    RequireValue(field, index);
    const qint64 size = field.type == Short ? 2 : NumberSize;
    const QByteArray bytes = BytesAt(device_, field.position + index * size, size);
    platform::ByteReader reader = ReaderOf(bytes);
    return field.type == Short ? reader.Read<quint16>() : reader.Read<quint32>();
}

double TiffFields::Fraction(const TiffField& field) const {
    RequireValue(field, 0);
    const QByteArray bytes = BytesAt(device_, field.position, 2 * NumberSize);
    platform::ByteReader reader = ReaderOf(bytes);
    const auto numerator = reader.Read<quint32>();
    const auto denominator = reader.Read<quint32>();
    return denominator == 0 ? 0 : double(numerator) / denominator;
}

}  // namespace kadrona::imaging
