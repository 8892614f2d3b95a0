#include "platform/UserRegistry.h"

#include <QFileInfo>
#include <QStandardPaths>

#include "platform/IniFile.h"
#include "platform/Paths.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

const QString ValuesGroup = u"Save"_s;

QString RegistryFile() {
    return JoinPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                    u"Veltmark/Kadrona.conf");
}

bool IsHexDigit(QChar unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') ||
           (unit >= u'A' && unit <= u'F');
}

/// The text as QSettings reads it: in double quotes, control characters as \xN, an "@" at the start
/// doubled.
QString Escaped(const QString& text) {
    QString escaped = text.startsWith(u'@') ? u"\"@"_s : u"\""_s;
    bool afterNumber = false;  // a digit would be read as part of it
    for (const QChar unit : text) {
        const bool needsNumber = unit < u' ' || (afterNumber && IsHexDigit(unit));
        if (needsNumber) {
            escaped += u"\\x%1"_s.arg(int(unit.unicode()), 0, 16);
        } else if (unit == u'"' || unit == u'\\') {
            escaped += u'\\';
            escaped += unit;
        } else {
            escaped += unit;
        }
        afterNumber = needsNumber;
    }
    return escaped + u'"';
}

/// Reads an escape, whose backslash is already taken off `rest`, and takes it off too.
QString TakeIniEscape(QStringView& rest) {
    if (rest.isEmpty()) {
        return {};
    }
    const QChar letter = rest.front();
    rest = rest.sliced(1);
    if (letter == u'x') {
        qsizetype digits = 0;
        while (digits < rest.size() && IsHexDigit(rest[digits])) {
            ++digits;
        }
        const QChar unit(static_cast<ushort>(rest.left(digits).toUInt(nullptr, 16)));
        rest = rest.sliced(digits);
        return unit;
    }
    constexpr QStringView Letters = u"abfnrtv";
    constexpr QStringView Meanings = u"\a\b\f\n\r\t\v";
    const qsizetype index = Letters.indexOf(letter);
    return index >= 0 ? Meanings[index] : letter;
}

QString Unescaped(const QString& escaped) {
    QString text;
    for (QStringView rest = escaped; !rest.isEmpty();) {
        const QChar unit = rest.front();
        rest = rest.sliced(1);
        if (unit == u'\\') {
            text += TakeIniEscape(rest);
        } else if (unit != u'"') {
            text += unit;
        }
    }
    return text.startsWith(u"@@") ? text.sliced(1) : text;
}

void Write(const QString& name, const QString& value) {
    const QString path = RegistryFile();
    CreateFolder(QFileInfo(path).path());  // where it cannot, locking says so
    IniFile::Change(
        path, [&](IniFile& file) { file.WriteString(ValuesGroup, name, value); }, Links::All);
}

}  // namespace

QString RegistryFolder() {
    return QFileInfo(RegistryFile()).path();
}

int ReadRegistryInteger(const QString& name) {
    return ReadRegistryText(name).toInt();
}

QString ReadRegistryText(const QString& name) {
    return Unescaped(IniFile(RegistryFile(), Links::All).ReadString(ValuesGroup, name));
}

void WriteRegistryInteger(const QString& name, int value) {
    Write(name, QString::number(value));
}

void WriteRegistryText(const QString& name, const QString& value) {
    Write(name, Escaped(value));
}

}  // namespace kadrona::platform
