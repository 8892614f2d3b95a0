#include "core/templates/TemplateFile.h"

#include <QtEndian>
#include <algorithm>
#include <array>

#include "platform/TextDecoding.h"

namespace kadrona::core {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype CountBytes = 4;
constexpr qsizetype IntegerBytes = 4;
constexpr qsizetype LongestName = 25;

/// The integers of an element in the order of the file: right stands before left and bottom before
/// top.
constexpr std::array Integers{
    &TMask::reserved, &TMask::colour, &TMask::brushStyle, &TMask::penWidth,
    &TMask::right,    &TMask::left,   &TMask::bottom,     &TMask::top,
};
constexpr qsizetype ShapeOffset = IntegerBytes * static_cast<qsizetype>(Integers.size());
constexpr qsizetype NameOffset = ShapeOffset + 1;
static_assert(NameOffset + 1 + LongestName == TemplateElementBytes);

QString NameOfBytes(QByteArrayView bytes) {
    QString name;
    for (const char byte : bytes) {
        if (byte != '\0') {
            name += platform::FromWindows1252(static_cast<uchar>(byte));
        }
    }
    return name;
}

/// The Windows-1252 byte of a character, "?" where there is none.
char ByteOfCharacter(QChar character) {
    const auto code = static_cast<uint>(character.unicode());
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
        return static_cast<char>(code);
    }
    for (int byte = 0x80; byte < 0xA0; ++byte) {
        if (platform::FromWindows1252(static_cast<uchar>(byte)) == character) {
            return static_cast<char>(byte);
        }
    }
    return '?';
}

QByteArray BytesOfName(const QString& name) {
    const QString kept = name.left(LongestName);
    QByteArray bytes(kept.size(), Qt::Uninitialized);
    std::transform(kept.begin(), kept.end(), bytes.begin(), ByteOfCharacter);
    return bytes;
}

TMask ParseElement(QByteArrayView bytes) {
    TMask element;
    for (size_t i = 0; i < Integers.size(); ++i) {
        element.*Integers[i] =
            qFromLittleEndian<qint32>(bytes.data() + IntegerBytes * static_cast<qsizetype>(i));
    }
    element.shape = static_cast<quint8>(bytes[ShapeOffset]);
    const qsizetype nameLength = static_cast<quint8>(bytes[NameOffset]);
    element.name = NameOfBytes(bytes.sliced(NameOffset + 1, std::min(nameLength, LongestName)));
    return element;
}

void AppendInteger(QByteArray& bytes, qint32 value) {
    const qint32 stored = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&stored), IntegerBytes);
}

void AppendElement(QByteArray& bytes, const TMask& element) {
    for (const auto field : Integers) {
        AppendInteger(bytes, element.*field);
    }
    const QByteArray name = BytesOfName(element.name);
    bytes.append(static_cast<char>(element.shape));
    bytes.append(static_cast<char>(name.size()));
    bytes.append(name.leftJustified(LongestName, '\0'));
}

}  // namespace

std::vector<TMask> ParseTemplate(QByteArrayView bytes) {
    if (bytes.size() < CountBytes) {
        throw TemplateFileError(
            u"Die Schablone ist beschädigt: Die Datei ist kürzer als ihr Kopf von 4 Bytes."_s);
    }
    const auto count = qFromLittleEndian<qint32>(bytes.data());
    if (count < 0) {
        throw TemplateFileError(
            u"Die Schablone ist beschädigt: Die Anzahl der Elemente ist negativ (%1)."_s.arg(
                count));
    }
    const qint64 promised = CountBytes + qint64{count} * TemplateElementBytes;
    if (bytes.size() < promised) {
        throw TemplateFileError(
            u"Die Schablone ist beschädigt: %1 Elemente brauchen %2 Bytes, die Datei hat %3."_s
                .arg(count)
                .arg(promised)
                .arg(bytes.size()));
    }
    std::vector<TMask> elements;
    elements.reserve(static_cast<size_t>(count));
    for (qint64 offset = CountBytes; offset < promised; offset += TemplateElementBytes) {
        elements.push_back(ParseElement(bytes.sliced(offset, TemplateElementBytes)));
    }
    return elements;
}

QByteArray SerializeTemplate(const std::vector<TMask>& elements) {
    QByteArray bytes;
    bytes.reserve(CountBytes + static_cast<qsizetype>(elements.size()) * TemplateElementBytes);
    AppendInteger(bytes, static_cast<qint32>(elements.size()));
    for (const TMask& element : elements) {
        AppendElement(bytes, element);
    }
    return bytes;
}

}  // namespace kadrona::core
