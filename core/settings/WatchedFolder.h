#pragma once

#include <QString>

namespace kadrona::core {

/// The folder that new photos come into, one for the user and kept in the registry; empty where
/// none is watched.
QString WatchedFolder();
void SetWatchedFolder(const QString& folder);

}  // namespace kadrona::core
