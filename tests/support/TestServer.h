#pragma once

#include <QByteArray>
#include <cstdlib>
#include <stdexcept>

#include "core/archive/ArchiveServer.h"

/// The server that tests/store/with-server runs beside the tests.
namespace kadrona::testing {

/// Whether there is one.
inline bool OnServer() {
    return qEnvironmentVariableIsSet("KADRONA_TEST_SERVER");
}

inline store::ServerAddress ServerDatabase(const QString& name) {
    return {.host = qEnvironmentVariable("KADRONA_TEST_SERVER"),
            .database = name,
            .user = QStringLiteral("kadrona"),
            .password = QStringLiteral("geheim")};
}

/// A new, empty database.
inline store::ServerAddress NewServerDatabase() {
    const auto server = core::OpenServer(ServerDatabase(QStringLiteral("postgres")),
                                         {.working = std::chrono::seconds(20)});
    const QString name = QStringLiteral("test");
    server->Execute(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(name));
    server->Execute(QStringLiteral("CREATE DATABASE %1").arg(name));
    return ServerDatabase(name);
}

/// What pg_ctl does with it: "restart", "stop -m immediate", "start". Throws std::runtime_error.
inline void ControlServer(const char* action) {
    const QByteArray line = qgetenv("KADRONA_TEST_SERVER_CTL") + action;
    // NOLINTNEXTLINE(cert-env33-c): the line is that of the tests' own script
    if (std::system(line.constData()) != 0) {
        throw std::runtime_error(line.toStdString());
    }
}

}  // namespace kadrona::testing
