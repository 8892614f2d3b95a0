#pragma once

#include "store/Database.h"
#include "store/ServerAddress.h"

/// What the part "kadrona-server" offers: a connection to a PostgreSQL server, for the caller to
/// delete. Throws ConnectionLost and StoreError.
extern "C" kadrona::store::Database* kadrona_connect_to_server(
    const kadrona::store::ServerAddress& address, const kadrona::store::ServerPatience& patience);
