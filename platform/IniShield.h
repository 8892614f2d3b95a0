#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <string>

namespace kadrona::platform {

/// Order of section and key names: case does not count, in any alphabet.
struct CaseInsensitiveLess {
    bool operator()(QStringView left, QStringView right) const {
        return left.compare(right, Qt::CaseInsensitive) < 0;
    }
};

/// `text` without blanks and tabs at the ends, which are all that an INI file drops.
QStringView TrimmedIniText(QStringView text);

/// First character of the keys that ShieldedIniText makes up; no key of a user starts so.
inline constexpr QChar IniShieldMark = QChar(u'\x01');

/// The text of an INI file, changed so that the SimpleIni library keeps every line of it. By itself
/// it drops, or takes for something else, lines that are neither section nor key, second values of
/// a key, what follows "]" and comments that precede no new entry. Such lines become keys that
/// start with IniShieldMark.
QString ShieldedIniText(const QString& text);

/// Takes the marks out of what SimpleIni wrote: the lines stand as they stood in the file. Runs of
/// empty lines become one.
QByteArray UnshieldedIniText(const std::string& written);

}  // namespace kadrona::platform
