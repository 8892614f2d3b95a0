#pragma once

#include <QStringList>

#include "store/Database.h"

namespace kadrona::core {

/// The tags of the photos that were filed last, each once, the newest first. Throws
/// store::StoreError.
QStringList EarlierTags(store::Database& database);

}  // namespace kadrona::core
