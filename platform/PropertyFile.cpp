#include "platform/PropertyFile.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// Whether a unit cannot stand in an INI file as it is: control characters, and halves of a
/// surrogate pair, which have no form in UTF-8.
bool NeedsNumber(const QString& text, qsizetype position) {
    const QChar unit = text[position];
    if (unit.isHighSurrogate()) {
        return position + 1 == text.size() || !text[position + 1].isLowSurrogate();
    }
    if (unit.isLowSurrogate()) {
        return position == 0 || !text[position - 1].isHighSurrogate();
    }
    return unit < u' ' || unit == u'\x7F';
}

/// The text in double quotes, escaped as in C: \" \\ \n \r \t and \uXXXX.
QString Quoted(const QString& text) {
    QString quoted = u"\""_s;
    for (qsizetype position = 0; position < text.size(); ++position) {
        const QChar unit = text[position];
        if (unit == u'"' || unit == u'\\') {
            quoted += u'\\';
            quoted += unit;
        } else if (unit == u'\n') {
            quoted += u"\\n";
        } else if (unit == u'\r') {
            quoted += u"\\r";
        } else if (unit == u'\t') {
            quoted += u"\\t";
        } else if (NeedsNumber(text, position)) {
            quoted += u"\\u%1"_s.arg(int(unit.unicode()), 4, 16, QChar(u'0'));
        } else {
            quoted += unit;
        }
    }
    return quoted + u'"';
}

/// Reads one escape, whose backslash is already taken off `rest`, and takes it off too.
std::optional<QChar> TakeEscape(QStringView& rest) {
    if (rest.isEmpty()) {
        return std::nullopt;
    }
    const QChar letter = rest.front();
    rest = rest.sliced(1);
    switch (letter.unicode()) {
        case u'"':
        case u'\\':
            return letter;
        case u'n':
            return u'\n';
        case u'r':
            return u'\r';
        case u't':
            return u'\t';
        case u'u': {
            bool isNumber = false;
            const QStringView digits = rest.left(4);
            const ushort unit = digits.toUShort(&isNumber, 16);
            rest = rest.sliced(digits.size());
            return isNumber && digits.size() == 4 ? std::optional(QChar(unit)) : std::nullopt;
        }
        default:
            return std::nullopt;
    }
}

std::optional<QString> Unquoted(QStringView quoted) {
    if (quoted.size() < 2 || !quoted.startsWith(u'"') || !quoted.endsWith(u'"')) {
        return std::nullopt;
    }
    QString text;
    for (QStringView rest = quoted.sliced(1, quoted.size() - 2); !rest.isEmpty();) {
        const QChar unit = rest.front();
        rest = rest.sliced(1);
        const std::optional<QChar> read = unit == u'\\' ? TakeEscape(rest) : unit;
        if (!read || (unit == u'"')) {
            return std::nullopt;
        }
        text += *read;
    }
    return text;
}

QString LineKey(const QString& property, int line) {
    return property + u'.' + QString::number(line);
}

}  // namespace

PropertyFile::PropertyFile(const QString& path) : ini_(path) {}

std::optional<QString> PropertyFile::ReadText(const QString& control,
                                              const QString& property) const {
    return Unquoted(ini_.ReadString(control, property));
}

std::optional<int> PropertyFile::ReadInteger(const QString& control,
                                             const QString& property) const {
    bool isInteger = false;
    const int value = ini_.ReadString(control, property).toInt(&isInteger);
    return isInteger ? std::optional(value) : std::nullopt;
}

std::optional<bool> PropertyFile::ReadBoolean(const QString& control,
                                              const QString& property) const {
    const QString value = ini_.ReadString(control, property);
    if (value.compare(u"true", Qt::CaseInsensitive) == 0) {
        return true;
    }
    return value.compare(u"false", Qt::CaseInsensitive) == 0 ? std::optional(false) : std::nullopt;
}

std::optional<QStringList> PropertyFile::ReadList(const QString& control,
                                                  const QString& property) const {
    const std::optional<int> count = ReadInteger(control, property);
    if (!count || *count < 0) {
        return std::nullopt;
    }
    QStringList lines;
    // The count may be a lie, so nothing is set aside for it.
    for (int line = 1; line <= *count; ++line) {
        const std::optional<QString> text = ReadText(control, LineKey(property, line));
        if (!text) {
            return std::nullopt;
        }
        lines.append(*text);
    }
    return lines;
}

void PropertyFile::WriteText(const QString& control, const QString& property,
                             const QString& value) {
    ini_.WriteString(control, property, Quoted(value));
}

void PropertyFile::WriteInteger(const QString& control, const QString& property, int value) {
    ini_.WriteInteger(control, property, value);
}

void PropertyFile::WriteBoolean(const QString& control, const QString& property, bool value) {
    ini_.WriteString(control, property, value ? u"true"_s : u"false"_s);
}

void PropertyFile::WriteList(const QString& control, const QString& property,
                             const QStringList& value) {
    const int count = int(value.size());
    WriteInteger(control, property, count);
    for (int line = 1; line <= count; ++line) {
        WriteText(control, LineKey(property, line), value[line - 1]);
    }
    for (int line = count + 1; ini_.EraseKey(control, LineKey(property, line)); ++line) {
    }
}

void PropertyFile::Save() {
    ini_.Save();
}

}  // namespace kadrona::platform
