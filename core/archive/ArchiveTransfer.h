#pragma once

#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// What a transfer has done.
struct TransferResult {
    qint64 records = 0;  ///< as many as the source has
    qint64 copied = 0;   ///< of them now; the others were there already
    qint64 leftOut = 0;  ///< of them, because they were deleted in the target
};

/// Copies an archive's records, with their numbers, thumbnails and words, and all that is kept
/// beside them to another `database`, and changes nothing in the first. Photos stay where they are:
/// the archive's folder is the same.
///
/// A transfer that was given up or cut off can be repeated: what is there already is left out, what
/// was changed or deleted in the source since is changed and deleted there too, and what was
/// deleted in the target stays deleted. At the end both are counted and every record is compared by
/// a checksum. Throws platform::Cancelled, and store::StoreError, also where the target has records
/// that are not the source's: numbers name photos and cannot change.
TransferResult TransferArchive(store::Database& source, store::Database& database,
                               const platform::Progress& progress);

}  // namespace kadrona::core
