#pragma once

#include <chrono>

struct pg_conn;

namespace kadrona::store {

/// Asks the server to end the statement that runs on the connection. False where it has not taken
/// the word within `patience`, rounded up to whole seconds.
bool RequestCancel(pg_conn& connection, std::chrono::milliseconds patience);

}  // namespace kadrona::store
