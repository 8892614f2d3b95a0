#pragma once

#include <QString>

namespace kadrona::bench {

/// Fills the archive database of a folder, which must exist, with `count` records as a shop would
/// have them after years: photos of `count` moments going back from today, names of people and
/// towns as tags, thumbnails of 180 pixels. They are filed through the archive's own table, only
/// without waiting for the disk. The same count gives the same records.
void MakeArchiveRecords(const QString& databaseFolder, int count);

}  // namespace kadrona::bench
