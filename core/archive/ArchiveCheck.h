#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// What can be wrong with an archive.
enum class ArchiveFault {
    Missing,     ///< a record whose photo or original is not there
    Changed,     ///< a file that is not as it was written
    Unreadable,  ///< a file or folder that is there but cannot be read
    Outside,     ///< a record whose text leads out of the archive
    Lost,        ///< a photo of the archive that no record names
    Unknown,     ///< any other file in the archive's folder
    Undeleted,   ///< a file of a record that was deleted
    Blank,       ///< a record of a photo that was never written
};

struct ArchiveFinding {
    ArchiveFault fault = ArchiveFault::Missing;
    /// The record's number; 0 where there is none.
    qint64 id = 0;
    QString path;
};

struct ArchiveReport {
    qint64 records = 0;
    /// Files whose checksum was known and is still the same.
    qint64 sound = 0;
    /// Files that had no checksum and have one now.
    qint64 adopted = 0;
    std::vector<ArchiveFinding> findings;

    bool Has(ArchiveFault fault) const;
    /// The records or paths with that fault.
    std::vector<qint64> Ids(ArchiveFault fault) const;
    QStringList Paths(ArchiveFault fault) const;
};

/// What a fault is called, and what can be done about it; for a heading and the line below it.
struct ArchiveFaultText {
    QString heading;
    QString advice;
};
ArchiveFaultText TextOf(ArchiveFault fault);

/// What a check looks through.
enum class CheckedPlace {
    Archive,
    /// A copy, such as a backup: it is only looked at.
    Copy,
};

/// Compares the records with the files, and the files with the checksums that were kept of them. A
/// file without one is taken as it is and gets one, and what a deletion has left goes; nothing else
/// is changed. What is filed or deleted meanwhile does no harm. Throws platform::FileError where
/// the archive's folder is not there, store::StoreError and platform::Cancelled.
ArchiveReport CheckArchive(store::Database& database, const QString& archiveFolder,
                           const platform::Progress& progress,
                           CheckedPlace place = CheckedPlace::Archive);

/// Takes the files that a report found changed as they are from now on. Throws store::StoreError,
/// platform::FileError and platform::Cancelled.
void AdoptChanged(store::Database& database, const QString& archiveFolder,
                  const ArchiveReport& report, const platform::Progress& progress);

}  // namespace kadrona::core
