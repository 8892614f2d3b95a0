#pragma once

#include <QString>

namespace kadrona::store {

/// Where a database server is, and as whom to work with it.
struct ServerAddress {
    static constexpr int UsualPort = 5432;

    /// A name, an IP address, or the folder of the server's socket on this machine.
    QString host;
    int port = UsualPort;
    QString database;
    QString user;
    QString password;

    bool operator==(const ServerAddress&) const = default;
};

}  // namespace kadrona::store
