// The index of the photo profiles and their settings files.

#include <QFile>

#include "core/Data.h"
#include "core/profiles/ProfileIndex.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

ProfileIndex TData::PhotoProfileIndex() const {
    return {dataFolder_, u"Profiles.ini", u"Profilename"_s};
}

QStringList TData::GetProfileList() const {
    return PhotoProfileIndex().Names();
}

QString TData::ProfileFile(const QString& name) const {
    return PhotoProfileIndex().SettingsFile(name);
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
    PhotoProfileIndex().Record(name, fileName);
}

bool TData::DeleteProfile(const QString& name) const {
    const QString path = ProfileFile(name);
    const bool deleted = path.isEmpty() || QFile::remove(path);
    PhotoProfileIndex().Erase(name);
    return deleted;
}

}  // namespace kadrona::core
