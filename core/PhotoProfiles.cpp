// The index of the photo profiles and their settings files.

#include <QFile>
#include <QFileInfo>

#include "core/Data.h"
#include "platform/Error.h"
#include "platform/IniFile.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString FileKey = u"Profilename"_s;

}  // namespace

QString TData::ProfileIndexFile() const {
    return platform::JoinPath(dataFolder_, u"Profiles.ini");
}

QStringList TData::GetProfileList() const {
    return platform::IniFile(ProfileIndexFile()).Sections();
}

QString TData::ProfileFile(const QString& name) const {
    const QString file = platform::IniFile(ProfileIndexFile()).ReadString(name, FileKey);
    // Only a bare name: an index edited by hand must not lead deleting or storing elsewhere.
    if (file != QFileInfo(file).fileName()) {
        return {};
    }
    const QString path = platform::JoinPath(dataFolder_, file);
    return QFileInfo(path).isFile() ? path : QString();
}

void TData::LoadProfile(const QString& name, ProfileStore& store) const {
    const QString path = ProfileFile(name);
    if (path.isEmpty()) {
        SaveNewProfile(name, store);
    } else {
        store.SetStorageFile(path);
    }
}

bool TData::SaveNewProfile(const QString& name, ProfileStore& store) const {
    const QString bound = store.StorageFile();
    try {
        const QString file = platform::CreateUniqueFile(dataFolder_, u"profile"_s);
        store.SetStorageFile(platform::JoinPath(dataFolder_, file));
        SaveProfileToIni(name, file);
    } catch (const std::exception&) {
        // Else what is stored later would go into a file that no profile knows.
        if (store.StorageFile() != bound) {
            QFile::remove(store.StorageFile());
            store.SetStorageFile(bound);
        }
        throw platform::Error(u"Can not save this profile settings!"_s);
    }
    return true;
}

void TData::SaveProfileToIni(const QString& name, const QString& fileName) const {
    platform::IniFile index(ProfileIndexFile());
    index.WriteString(name, FileKey, fileName);
    index.Save();
}

bool TData::DeleteProfile(const QString& name) const {
    const QString path = ProfileFile(name);
    const bool deleted = path.isEmpty() || QFile::remove(path);
    platform::IniFile index(ProfileIndexFile());
    index.EraseSection(name);
    index.Save();
    return deleted;
}

}  // namespace kadrona::core
