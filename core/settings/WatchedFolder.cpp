#include "core/settings/WatchedFolder.h"

#include "platform/UserRegistry.h"

namespace kadrona::core {

namespace {

constexpr QLatin1StringView WatchedFolderName("WatchedFolder");

}  // namespace

QString WatchedFolder() {
    return platform::ReadRegistryText(WatchedFolderName);
}

void SetWatchedFolder(const QString& folder) {
    platform::WriteRegistryText(WatchedFolderName, folder);
}

}  // namespace kadrona::core
