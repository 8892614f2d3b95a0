#pragma once

#include <QString>
#include <QStringView>

/// What a line of an INI file is. A line is given with its end: CR, LF, both or, for the last one,
/// none. What is returned are parts of what was given.
namespace kadrona::platform {

/// Without blanks and tabs at the ends, which is what an INI file drops of names and values.
QStringView Trimmed(QStringView text);

/// The first line of `text`, which is not empty.
QStringView FirstLine(QStringView text);

QStringView WithoutEnd(QStringView line);

bool IsBlank(QStringView line);
bool IsComment(QStringView line);

/// Name of the section that the line begins; empty where it begins none.
QStringView HeaderName(QStringView line);

/// Name of the key that the line sets; empty where it sets none.
QStringView KeyName(QStringView line);

/// Value of a line that sets a key.
QStringView ValueText(QStringView line);

/// The form in which names are compared: case does not count, in any alphabet. Every character
/// stays one of the same length, so that places in the text stay too; "ß" is not "ss".
QString CaseFolded(QStringView text);

}  // namespace kadrona::platform
