#include "imaging/ExifBlock.h"

#include <QDataStream>
#include <QIODevice>
#include <vector>

namespace kadrona::imaging {

namespace {

enum class FieldType : quint16 { Short = 3, Long = 4, Rational = 5, Undefined = 7 };

struct Field {
    quint16 tag;
    FieldType type;
    quint32 count;
    /// The value, or its offset where it takes more than four bytes.
    quint32 value;
};

constexpr quint32 HeaderBytes = 8;

constexpr quint32 DirectoryBytes(size_t fields) {
    return static_cast<quint32>(2 + 12 * fields + 4);
}

/// Four bytes of a field as the number that is written for them.
constexpr quint32 FourBytes(quint32 a, quint32 b, quint32 c, quint32 d) {
    return a | b << 8 | c << 16 | d << 24;
}

void WriteDirectory(QDataStream& stream, const std::vector<Field>& fields) {
    stream << static_cast<quint16>(fields.size());
    for (const Field& field : fields) {
        stream << field.tag << static_cast<quint16>(field.type) << field.count << field.value;
    }
    stream << quint32{0};  // no further directory
}

std::vector<Field> ExifFields(QSize size) {
    constexpr quint32 Srgb = 1;
    return {
        {0x9000, FieldType::Undefined, 4, FourBytes('0', '2', '3', '2')},  // ExifVersion
        {0x9101, FieldType::Undefined, 4, FourBytes(1, 2, 3, 0)},  // ComponentsConfiguration YCbCr
        {0xa000, FieldType::Undefined, 4, FourBytes('0', '1', '0', '0')},  // FlashpixVersion
        {0xa001, FieldType::Short, 1, Srgb},                               // ColorSpace
        {0xa002, FieldType::Long, 1, static_cast<quint32>(size.width())},
        {0xa003, FieldType::Long, 1, static_cast<quint32>(size.height())},
    };
}

}  // namespace

QByteArray ExifBlock(QSize size, DotsPerInch resolution) {
    constexpr quint32 Inch = 2;
    constexpr quint32 Centred = 1;
    constexpr quint32 RationalBytes = 8;
    constexpr quint32 XOffset = HeaderBytes + DirectoryBytes(5);
    constexpr quint32 YOffset = XOffset + RationalBytes;
    constexpr quint32 ExifOffset = YOffset + RationalBytes;

    QByteArray block("Exif\0\0", 6);
    QDataStream stream(&block, QIODevice::WriteOnly | QIODevice::Append);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("II", 2);
    stream << quint16{42} << HeaderBytes;
    WriteDirectory(stream, {
                               {0x011a, FieldType::Rational, 1, XOffset},  // XResolution
                               {0x011b, FieldType::Rational, 1, YOffset},  // YResolution
                               {0x0128, FieldType::Short, 1, Inch},        // ResolutionUnit
                               {0x0213, FieldType::Short, 1, Centred},     // YCbCrPositioning
                               {0x8769, FieldType::Long, 1, ExifOffset},
                           });
    const auto dotsPerInch = static_cast<quint32>(resolution.value);
    stream << dotsPerInch << quint32{1} << dotsPerInch << quint32{1};
    WriteDirectory(stream, ExifFields(size));
    return block;
}

}  // namespace kadrona::imaging
