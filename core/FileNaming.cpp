#include "core/FileNaming.h"

#include <QDir>
#include <QFileInfo>

#include "core/Data.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {
constexpr QLatin1StringView ArchiveFolderValue("ArchivFilesDir");
}

QString DelLastBackslash(const QString& path) {
    const bool ends = path.endsWith(QDir::separator());
    return ends ? path.chopped(1) : path;
}

QString GetNameWithSuffix(const QString& path, const QString& suffix) {
    return QFileInfo(path).completeBaseName() + suffix;
}

QString TData::GetArchivPath() const {
    return platform::ReadRegistryText(ArchiveFolderValue);
}

void TData::SetArchivPath(const QString& folder) const {
    platform::WriteRegistryText(ArchiveFolderValue, folder);
}

}  // namespace kadrona::core
