#pragma once

#include <QString>

namespace kadrona::platform {

/// The program's values of one user: the group "Save" of Veltmark/Kadrona.conf below
/// $XDG_CONFIG_HOME (~/.config), in the form of QSettings. A missing file or value reads as 0 or
/// empty text. Throw FileError where the file cannot be read or written.
///
/// QSettings itself keeps quiet about failures, empties the file on a full disk and waits for ever
/// for a lock that another machine left, or for a pipe in the file's place.
int ReadRegistryInteger(const QString& name);
QString ReadRegistryText(const QString& name);
void WriteRegistryInteger(const QString& name, int value);
void WriteRegistryText(const QString& name, const QString& value);

/// The folder of that file; it need not exist.
QString RegistryFolder();

}  // namespace kadrona::platform
