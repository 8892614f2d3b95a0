#pragma once

#include <QString>
#include <functional>

#include "store/Database.h"

namespace kadrona::core {

/// Called with how many of how many steps are done; false ends the work.
using TransferProgress = std::function<bool(qint64 done, qint64 all)>;

/// How a transfer ended.
struct TransferResult {
    bool complete = false;  ///< false where it was ended
    qint64 records = 0;     ///< as many as the source has
    qint64 copied = 0;      ///< of them now; the others were there already
};

/// Copies an archive's records, with their numbers, thumbnails and words, to another database, and
/// changes nothing in the first. Photos stay where they are: the archive's folder is the same.
///
/// A transfer that was ended or cut off can be repeated: what is there already is left out. At the
/// end both are counted and every record is compared by a checksum. Throws store::StoreError, also
/// where the target has records that are not the source's: numbers name photos and cannot change.
TransferResult TransferArchive(store::Database& source, store::Database& target,
                               const TransferProgress& progress);

}  // namespace kadrona::core
