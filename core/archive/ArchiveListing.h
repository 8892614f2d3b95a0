#pragma once

#include <QByteArray>
#include <vector>

#include "core/archive/ArchiveSearch.h"
#include "store/Database.h"

namespace kadrona::core {

/// The numbers of all records, newest first, and beside each the text that it is found by, close
/// together in memory: going through 100,000 records takes a few milliseconds, where the database
/// would need a hundred to hand them out.
class ArchiveListing {
 public:
    /// Reads them from one index of the table alone. Throws store::StoreError.
    explicit ArchiveListing(store::Database& database);

    const std::vector<qint64>& Ids() const { return ids_; }
    std::vector<qint64> Find(const ArchiveSearch& search) const;

 private:
    std::vector<qint64> ids_;
    QByteArray texts_;
    /// Where in `texts_` the text of each record ends.
    std::vector<qsizetype> ends_;
};

}  // namespace kadrona::core
