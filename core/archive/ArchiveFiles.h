#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "core/archive/ArchiveTable.h"
#include "platform/Links.h"
#include "platform/Progress.h"

/// The files of the archive, and the names by which the database knows them.
namespace kadrona::core {

/// The folder of the originals in the archive's.
inline constexpr QLatin1StringView OriginalsFolder("Originale");

/// A folder as it is stored, with backslashes, as a path below the archive's.
QString StoredFolderPath(const QString& archiveFolder, QString stored);

/// A file's path as it is stored: its folder and name, with backslashes, below the archive's
/// folder.
QString StoredPath(const QString& storedFolder, const QString& name);

/// Photos and originals that a record has, as StoredPath names them. Throws store::StoreError.
QSet<QString> NamedFiles(store::Database& database);

/// Those of the paths that a record has, in whatever spelling, or whose names are none of a photo
/// or original. Throws store::StoreError.
QSet<QString> FilesOfNoDeletedPhoto(store::Database& database, const QSet<QString>& paths);

/// The number in the name of a photo or original, "2026_03_00042.jpg"; 0 where there is none, and
/// where it is one that would soon leave no others.
qint64 NumberInName(const QString& path);

/// False for a path that a record's text leads out of the archive.
bool IsInsideArchive(const QString& path, const QString& archiveFolder);

/// Why a file below the archive's or a backup's folder must not be used: its way leads out of the
/// folder or below it through another user's link. In German, without a full stop; else empty.
QString ForeignWay(const QString& path, const QString& root);

/// Throws platform::FileError where there is such a reason.
void RequireOwnWay(const QString& path, const QString& root);

/// Whether there is a folder. Throws platform::FileError where it does not answer: whatever is done
/// in it would hold the window up. So whoever works in an archive's folder asks this shortly
/// before.
bool IsArchiveFolder(const QString& archiveFolder);

/// Throws platform::FileError where there is no such folder, too: a share that is not mounted must
/// not pass for an archive without photos.
void RequireArchiveFolder(const QString& archiveFolder);

/// Why a folder without files is not believed: the database knows photos there. In German, else
/// empty. Throws platform::FileError where it cannot be read, and store::StoreError.
QString WhyUnmounted(store::Database& database, const QString& archiveFolder);

/// The archive as something that is waited for: whoever works in its folder holds a
/// platform::SilenceWatch with it, for the folder may fall silent after the look.
QString AwaitedArchive(const QString& archiveFolder);

/// The progress of a long operation in folders: throws as RequireArchiveFolder where one of them is
/// gone or silent meanwhile. As long as it or a copy lives, the first one's silence is told.
platform::Progress WhileAnswering(const QStringList& folders, platform::Progress progress);

/// Called for each megabyte of a file, for anybody may have laid a large one there; what it throws
/// ends the work.
using FileTick = std::function<void()>;

/// Reads the whole file. Nothing where there is none; throws platform::FileError where it cannot be
/// read.
std::optional<FileDigest> DigestOf(
    const QString& path, const FileTick& tick = [] {});

/// Copies a file through a temporary one, with the time of the file, from which lost records are
/// made anew. A file of that name is replaced. `links` says whether a link of any user may stand in
/// the place of the file. Throws platform::FileError.
void CopyArchiveFile(
    const QString& from, const QString& to, platform::Links links, const FileTick& tick = [] {});

/// Takes the photo of a record as its file is now. Does nothing where there is none. Throws
/// platform::FileError and store::StoreError.
void KeepDigest(store::Database& database, qint64 id, const QString& path);

/// Removes a file below the archive's folder and then the folders above it that are empty. A file
/// that is not there counts as removed. Throws platform::FileError, also where the path leads out
/// of the archive or through another user's link.
void RemoveArchiveFile(const QString& path, const QString& archiveFolder);

/// A name from outside as a file's: without what folders, devices or other systems take for more
/// than a name, at most 100 characters, never empty.
QString SafeFileName(const QString& name);

}  // namespace kadrona::core
