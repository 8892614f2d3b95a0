#include "core/Windows1252.h"

#include <algorithm>
#include <array>

namespace kadrona::core {

namespace {

/// Characters of the bytes 0x80 to 0x9F; every other byte is the character of its number.
constexpr std::array<char16_t, 32> HighControls{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t FromByte(quint8 byte) {
    return byte >= 0x80 && byte < 0xA0 ? HighControls.at(byte - 0x80U) : char16_t{byte};
}

char ToByte(QChar character) {
    const char16_t unit = character.unicode();
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
        return static_cast<char>(unit);
    }
    const auto* const found = std::find(HighControls.begin(), HighControls.end(), unit);
    return found == HighControls.end() ? '?'
                                       : static_cast<char>(0x80 + (found - HighControls.begin()));
}

}  // namespace

QString FromWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return QChar(FromByte(static_cast<quint8>(byte))); });
    return text;
}

QByteArray ToWindows1252(QStringView text) {
    QByteArray bytes(text.size(), Qt::Uninitialized);
    std::transform(text.begin(), text.end(), bytes.begin(), ToByte);
    return bytes;
}

}  // namespace kadrona::core
