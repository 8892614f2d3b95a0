#include "core/profiles/ProfileIndex.h"

#include <QFileInfo>

#include "platform/IniFile.h"
#include "platform/Paths.h"

namespace kadrona::core {

ProfileIndex::ProfileIndex(QString dataFolder, QStringView fileName, QString key)
    : dataFolder_(std::move(dataFolder)),
      path_(platform::JoinPath(dataFolder_, fileName)),
      key_(std::move(key)) {}

QStringList ProfileIndex::Names() const {
    return platform::IniFile(path_).Sections();
}

QString ProfileIndex::SettingsFile(const QString& name) const {
    const QString file = platform::IniFile(path_).ReadString(name, key_);
    // Only a bare name: an index edited by hand must not lead deleting or storing elsewhere.
    if (file != QFileInfo(file).fileName()) {
        return {};
    }
    const QString path = platform::JoinPath(dataFolder_, file);
    return platform::IsFile(path) ? path : QString();
}

void ProfileIndex::Record(const QString& name, const QString& fileName) const {
    platform::IniFile index(path_);
    index.WriteString(name, key_, fileName);
    index.Save();
}

void ProfileIndex::Erase(const QString& name) const {
    platform::IniFile index(path_);
    index.EraseSection(name);
    index.Save();
}

}  // namespace kadrona::core
