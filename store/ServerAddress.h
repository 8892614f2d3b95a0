#pragma once

#include <QString>
#include <chrono>

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
    /// Only a server whose certificate is valid for `host` is talked to, except over a socket.
    bool verified = false;

    bool operator==(const ServerAddress&) const = default;
};

/// How long nothing may be heard of a server before it counts as gone.
struct ServerPatience {
    /// For all of the connecting.
    std::chrono::milliseconds connecting{2000};
    std::chrono::milliseconds working{2000};
};

}  // namespace kadrona::store
