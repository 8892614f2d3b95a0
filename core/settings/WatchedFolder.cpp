#include "core/settings/WatchedFolder.h"

#include "platform/UserRegistry.h"

namespace kadrona::core {

namespace {

constexpr QLatin1StringView ValueName("WatchedFolder");

}  // namespace

QString WatchedFolder() {
    return platform::ReadRegistryText(ValueName);
}

void SetWatchedFolder(const QString& folder) {
    platform::WriteRegistryText(ValueName, folder);
}

}  // namespace kadrona::core
