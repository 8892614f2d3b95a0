#pragma once

#include <QByteArrayList>
#include <chrono>

#include "store/ServerAddress.h"

struct pg_conn;

namespace kadrona::store {

/// Whether a host must be looked up: it is a name, neither an address nor a socket's folder.
bool NeedsLookup(const QByteArray& host);

/// A connection that begins, for libpq to finish; null without memory. `addresses` are those of the
/// host, none where it needs no lookup. Nothing is read from the environment; `patience` bounds the
/// waiting for locks and for a network that is gone. The caller owns it.
pg_conn* StartConnection(const ServerAddress& address, const QByteArrayList& addresses,
                         std::chrono::milliseconds patience);

}  // namespace kadrona::store
