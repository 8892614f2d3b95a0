#pragma once

#include <QDateTime>
#include <QStringList>
#include <vector>

#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// What came of a deletion.
struct Deletion {
    /// Records that are gone.
    int deleted = 0;
    /// Why files of them are still there, a sentence each. They are tried again by FinishDeletion.
    QStringList failures;
};

/// Those that were chosen, or of them those that are still blank when their turn comes: what was
/// blank when it was listed may be somebody's photo by then.
enum class Deletable { Chosen, Blank };

/// Deletes records with all that belongs to them: the photo, its original, thumbnail, tags, words
/// of the full-text index, checksum and date; then the folders that are empty. What stays is the
/// number and `now` in "ImgDeleted", and the files' names, which tell of nobody. A file that
/// another record has too stays.
///
/// A record goes in one transaction that notes its files in "ImgRemoval"; then they are removed,
/// then the note. Whatever ends the program in between leaves the note, by which FinishDeletion
/// goes on. Numbers that are no record's are left out.
///
/// Throws platform::FileError, with nothing deleted, where the archive's folder is not there,
/// store::StoreError, and platform::Cancelled between two records.
Deletion DeleteRecords(store::Database& database, const QString& archiveFolder,
                       const std::vector<qint64>& ids, const QDateTime& now,
                       const platform::Progress& progress, Deletable which = Deletable::Chosen);

/// Removes the files that a deletion has left; returns why some are still there, as Deletion does.
/// Throws as DeleteRecords does.
QStringList FinishDeletion(store::Database& database, const QString& archiveFolder);

/// The records of photos that were never written: they have a number alone. One that is being filed
/// at the moment looks the same; its record comes back whole when it is filled.
std::vector<qint64> BlankRecords(store::Database& database);

/// Gives back what deleted records have left in the database's file; see store::Database::Compact.
void CompactArchive(store::Database& database, const platform::Progress& progress);

}  // namespace kadrona::core
