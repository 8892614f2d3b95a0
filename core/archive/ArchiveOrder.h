#pragma once

#include <QDate>
#include <optional>
#include <vector>

#include "store/Database.h"

namespace kadrona::core {

/// The days from which photos are listed; both count.
struct ArchivePeriod {
    std::optional<QDate> from;
    std::optional<QDate> to;
};

enum class ArchiveOrder { NewestFirst, OldestFirst, Tags, Template };

/// Those of the records that were filed in a period, in an order: `ids` come newest first. Texts
/// are compared as the search compares them, without case and marks; records that are alike keep
/// their order. Throws store::StoreError.
std::vector<qint64> Arranged(store::Database& database, std::vector<qint64> ids,
                             const ArchivePeriod& period, ArchiveOrder order);

}  // namespace kadrona::core
