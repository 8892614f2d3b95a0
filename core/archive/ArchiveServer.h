#pragma once

#include <QString>
#include <memory>

#include "store/Database.h"
#include "store/ServerAddress.h"

namespace kadrona::core {

/// Whether the archive's database lies on a server that several workplaces share, and on which. One
/// for the user, beside the registry, in a folder that nobody else can open.
struct ArchiveServer {
    bool used = false;
    store::ServerAddress address;

    bool operator==(const ArchiveServer&) const = default;
};

/// Not used where nothing was stored. Throw platform::FileError.
ArchiveServer StoredArchiveServer();
void StoreArchiveServer(const ArchiveServer& server);

/// False where the program was built without the library for it.
bool CanUseServers();

/// Opens the database. Throws store::ConnectionLost where the server does not answer or is not
/// ready, and store::StoreError for whatever else is in the way.
std::unique_ptr<store::Database> OpenServer(const store::ServerAddress& address,
                                            const store::ServerPatience& patience = {});

/// Tries whether the archive can be kept there, and changes nothing. Returns what there is, for the
/// user to read; throws store::StoreError where it cannot.
QString TryServer(const store::ServerAddress& address);

}  // namespace kadrona::core
