#include "core/settings/ArchiveFolder.h"

#include "platform/UserRegistry.h"

namespace kadrona::core {

namespace {

constexpr QLatin1StringView ValueName("ArchivFilesDir");

}  // namespace

QString ArchiveFolder() {
    return platform::ReadRegistryText(ValueName);
}

void SetArchiveFolder(const QString& folder) {
    platform::WriteRegistryText(ValueName, folder);
}

}  // namespace kadrona::core
