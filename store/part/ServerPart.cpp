#include "store/ServerPart.h"

#include <memory>

#include "store/postgres/PostgresDatabase.h"

kadrona::store::Database* kadrona_connect_to_server(
    const kadrona::store::ServerAddress& address, const kadrona::store::ServerPatience& patience) {
    return std::make_unique<kadrona::store::PostgresDatabase>(address, patience).release();
}
