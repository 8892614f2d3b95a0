#include "printing/PrinterSettingsFile.h"

#include <QtEndian>

namespace kadrona::printing {

namespace {

constexpr qsizetype NameUnits = LongestStoredName + 1;
constexpr qsizetype NameBytes = NameUnits * 2;
constexpr qsizetype DeviceOffset = 0;
constexpr qsizetype DriverOffset = DeviceOffset + NameBytes;
constexpr qsizetype PortOffset = DriverOffset + NameBytes;
constexpr qsizetype LengthOffset = 200;
constexpr qsizetype HeaderBytes = 208;

void PutName(QByteArray& header, qsizetype offset, const QString& name) {
    const QString stored = StoredName(name);
    qToLittleEndian<char16_t>(stored.utf16(), stored.size(), header.data() + offset);
}

QString NameAt(QByteArrayView header, qsizetype offset) {
    QString name;
    for (qsizetype i = 0; i < NameUnits; ++i) {
        const auto unit = qFromLittleEndian<char16_t>(header.data() + offset + 2 * i);
        if (unit == 0) {
            break;
        }
        name += QChar(unit);
    }
    return name;
}

}  // namespace

QString StoredName(const QString& name) {
    QString ended = name.left(name.indexOf(QChar(0)));
    if (ended.size() <= LongestStoredName) {
        return ended;
    }
    const bool cutsCharacter = ended.at(LongestStoredName).isLowSurrogate() &&
                               ended.at(LongestStoredName - 1).isHighSurrogate();
    return ended.left(cutsCharacter ? LongestStoredName - 1 : LongestStoredName);
}

QByteArray PrinterSettingsBytes(const PrinterChoice& choice) {
    QByteArray bytes(HeaderBytes, '\0');
    PutName(bytes, DeviceOffset, choice.device);
    PutName(bytes, DriverOffset, choice.driver);
    PutName(bytes, PortOffset, choice.port);
    qToLittleEndian<qint64>(choice.deviceMode.size(), bytes.data() + LengthOffset);
    return bytes + choice.deviceMode;
}

std::optional<PrinterChoice> ReadPrinterSettings(QByteArrayView bytes) {
    if (bytes.size() < HeaderBytes) {
        return std::nullopt;
    }
    const auto length = qFromLittleEndian<qint64>(bytes.data() + LengthOffset);
    if (length < 0 || length > bytes.size() - HeaderBytes) {
        return std::nullopt;
    }
    return PrinterChoice{NameAt(bytes, DeviceOffset), NameAt(bytes, DriverOffset),
                         NameAt(bytes, PortOffset),
                         bytes.sliced(HeaderBytes, length).toByteArray()};
}

}  // namespace kadrona::printing
