#pragma once

#include <QString>
#include <QStringList>

#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// Of a backup, the folder with the files of the archive.
inline constexpr QLatin1StringView BackupFiles("Archiv");

/// What came of a backup.
struct Backup {
    qint64 copied = 0;
    qint64 unchanged = 0;
    /// Of photos that were deleted in the archive since the backup before.
    qint64 removed = 0;
    /// What could not be copied or is not there, though the database names it, a sentence each; the
    /// rest was.
    QStringList failures;
};

/// Of a backup, the file that tells whose it is.
inline constexpr QLatin1StringView BackupMarker("Sicherung.txt");

/// Copies an archive that is in use to a folder: the database as "KDRImageBase.db", and below
/// "Archiv" all files of the archive's folder. What the folder has already of the same size and
/// content stays. A file whose content no longer has its checksum does not take the place of one
/// that has it. The files of deleted records are deleted in the backup too, nothing else is.
///
/// The database is copied first and takes its place last: a record's photo is in the backup or was
/// deleted meanwhile, and a backup that is given up or fails leaves the older one whole.
///
/// Throws platform::FileError where the archive's folder is not there, or empty though there are
/// photos, or the target is neither empty nor a backup of this archive, or lies within the archive
/// or the archive in it; store::StoreError and platform::Cancelled.
Backup BackUpArchive(store::Database& database, const QString& archiveFolder, const QString& target,
                     const platform::Progress& progress);

}  // namespace kadrona::core
