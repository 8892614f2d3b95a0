#pragma once

#include <QString>

struct sqlite3;

namespace kadrona::store {

/// Why the last call on a connection failed, in German where the reason is a common one, else in
/// SQLite's own words; for the end of an error text, without a full stop.
QString SqliteReason(sqlite3* handle, int result);

}  // namespace kadrona::store
