#include "core/settings/ArchiveFolder.h"

#include "platform/UserRegistry.h"

namespace kadrona::core {

namespace {

constexpr QLatin1StringView ArchiveFolderName("ArchivFilesDir");

}  // namespace

QString ArchiveFolder() {
    return platform::ReadRegistryText(ArchiveFolderName);
}

void SetArchiveFolder(const QString& folder) {
    platform::WriteRegistryText(ArchiveFolderName, folder);
}

}  // namespace kadrona::core
