#include "imaging/metadata/ExifBlock.h"

#include <QDataStream>
#include <QIODevice>
#include <vector>

namespace kadrona::imaging {

namespace {

enum class FieldType : quint16 { Ascii = 2, Short = 3, Long = 4, Rational = 5, Undefined = 7 };

struct Field {
    quint16 tag;
    FieldType type;
    quint32 count;
    /// As it stands in the file.
    QByteArray value;
};
using Fields = std::vector<Field>;

constexpr quint32 HeaderBytes = 8;
constexpr qsizetype InlineBytes = 4;

template <typename... Numbers>
QByteArray LittleEndian(Numbers... numbers) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    (stream << ... << numbers);
    return bytes;
}

Field Short(quint16 tag, quint16 value) {
    return {tag, FieldType::Short, 1, LittleEndian(value)};
}

Field Long(quint16 tag, int value) {
    return {tag, FieldType::Long, 1, LittleEndian(static_cast<quint32>(value))};
}

Field Whole(quint16 tag, int value) {
    return {tag, FieldType::Rational, 1, LittleEndian(static_cast<quint32>(value), quint32{1})};
}

Field Undefined(quint16 tag, const QByteArray& value) {
    return {tag, FieldType::Undefined, static_cast<quint32>(value.size()), value};
}

/// `text` must not be empty. The zero behind it is part of the value.
Field Ascii(quint16 tag, const QByteArray& text) {
    return {tag, FieldType::Ascii, static_cast<quint32>(text.size() + 1), text + '\0'};
}

/// A directory that stands `offset` bytes from the start of the block, and behind it the values
/// that take more than four bytes.
QByteArray Directory(const Fields& fields, quint32 offset) {
    QByteArray directory;
    QByteArray values;
    const auto valuesOffset = offset + static_cast<quint32>(2 + 12 * fields.size() + 4);
    QDataStream stream(&directory, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << static_cast<quint16>(fields.size());
    for (const Field& field : fields) {
        stream << field.tag << static_cast<quint16>(field.type) << field.count;
        if (field.value.size() <= InlineBytes) {
            stream.writeRawData(field.value.leftJustified(InlineBytes, '\0').constData(),
                                InlineBytes);
            continue;
        }
        stream << valuesOffset + static_cast<quint32>(values.size());
        values.append(field.value);
        if (values.size() % 2 != 0) {
            values.append('\0');  // a value begins at an even offset
        }
    }
    stream << quint32{0};  // no further directory
    return directory + values;
}

Fields ImageFields(DotsPerInch resolution, const WrittenMetadata& metadata) {
    constexpr quint16 Inch = 2;
    constexpr quint16 Centred = 1;
    Fields fields;
    if (resolution.value > 0) {
        fields.push_back(Whole(0x011a, resolution.value));  // XResolution
        fields.push_back(Whole(0x011b, resolution.value));  // YResolution
        fields.push_back(Short(0x0128, Inch));              // ResolutionUnit
    }
    if (!metadata.software.isEmpty()) {
        fields.push_back(Ascii(0x0131, metadata.software));
    }
    fields.push_back(Short(0x0213, Centred));  // YCbCrPositioning
    return fields;
}

Fields ExifFields(QSize size) {
    constexpr quint16 Srgb = 1;
    return {
        Undefined(0x9000, "0232"),                     // ExifVersion
        Undefined(0x9101, QByteArray("\1\2\3\0", 4)),  // ComponentsConfiguration: YCbCr
        Undefined(0xa000, "0100"),                     // FlashpixVersion
        Short(0xa001, Srgb),                           // ColorSpace
        Long(0xa002, size.width()),
        Long(0xa003, size.height()),
    };
}

}  // namespace

QByteArray ExifBlock(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata) {
    Fields fields = ImageFields(resolution, metadata);
    fields.push_back(Long(0x8769, 0));  // where the EXIF directory stands
    const qsizetype imageBytes = Directory(fields, HeaderBytes).size();
    fields.back() = Long(0x8769, static_cast<int>(HeaderBytes + imageBytes));

    QByteArray block("II");
    block += LittleEndian(quint16{42}, HeaderBytes);
    block += Directory(fields, HeaderBytes);
    block += Directory(ExifFields(size), static_cast<quint32>(block.size()));
    return block;
}

}  // namespace kadrona::imaging
