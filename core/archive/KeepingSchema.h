#pragma once

#include <QStringList>
#include <vector>

#include "store/Database.h"

namespace kadrona::core {

/// Makes the tables that stand beside "ImgDB" where they are missing; a complete database is not
/// written to. Before it was called once, or by a version that does not know all, a table may be
/// missing: whoever reads one asks for it. All texts are portable; a time is "2026-03-07 14:30:05",
/// a date "2026-03-07", local.
///
/// ImgChecksum: size and SHA-256 of a record's photo as it was written. ImgOriginal: the original
/// of a record's photo, what was cut of it and what was done to it. ImgRemoval: a file of a deleted
/// record that is still to be removed. ImgDeleted: the number of a deleted record, and when.
/// ImgKeepUntil: the day until which a record is kept, in place of the archive's period.
/// ImgKeeping: a value of the archive, its name and the value. ImgDeletedFile: a file that a
/// deleted record had, and that no record has had since.
///
/// Throws store::StoreError.
void CreateKeeping(store::Database& database);

/// Those tables by their names, with their columns in order.
struct KeepingColumns {
    QString table;
    QStringList columns;
};
std::vector<KeepingColumns> AllKeepingColumns();

/// What tells this archive from any other: made by chance the first time, it goes with the records
/// to another database. Throws store::StoreError.
QString ArchiveIdentity(store::Database& database);

}  // namespace kadrona::core
