#pragma once

#include <QString>
#include <QStringView>

namespace kadrona::platform {

/// folder + the platform's separator, unless the folder ends in it, + name. An empty folder gives a
/// path in the root, as every path built on a missing folder does.
QString JoinPath(QStringView folder, QStringView name);

/// The path without one trailing path separator; unchanged where it does not end in one.
QString WithoutTrailingSeparator(QString path);

/// Folder that holds the real program file (links followed), without a trailing separator.
QString ProgramFolder();

/// The folder of the templates that were delivered with the program of this folder: "Schablonen" in
/// it, or "../share/kadrona/Schablonen" beside it, the first that exists; the former where neither
/// does.
QString TemplateFolder(const QString& programFolder);

/// The same for a folder of another name.
QString DeliveredFolder(const QString& programFolder, const QString& name);

/// The machine-wide folder for application data, without a trailing separator. On Linux:
/// $KADRONA_COMMON_APPDATA if set; else /var/lib if /var/lib/Kadrona exists and can be written to
/// (a package makes it); else $XDG_DATA_HOME (~/.local/share where that is unset).
QString CommonAppDataFolder();

/// The user's own folder for sockets ($XDG_RUNTIME_DIR); empty where the session has none that is
/// his alone.
QString RuntimeFolder();

/// Whether there is a regular file, or a link to one. Throws FileError where that cannot be looked
/// up: what may be there must not be taken for missing.
bool IsFile(const QString& path);

/// The same of a folder.
bool IsFolder(const QString& path);

/// Creates a folder with all missing parents, with the permissions of FileModes.h. True when it
/// exists afterwards.
bool CreateFolder(const QString& path);

/// The same, but throws FileError, which says why, where there is none.
void RequireFolder(const QString& path);

}  // namespace kadrona::platform
