#include "core/profiles/PhotoProfiles.h"

#include <QFile>

#include "core/settings/AdditionsFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/PropertyFile.h"
#include "platform/UniqueFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString PhotoFilePrefix = u"profile"_s;

}  // namespace

PhotoProfiles::PhotoProfiles(const QString& dataFolder)
    : dataFolder_(dataFolder),
      index_(dataFolder, u"Profiles.ini", u"Profilename"_s, PhotoFilePrefix) {}

void PhotoProfiles::Load(const QString& name, ProfileStore& store) const {
    const QString path = SettingsFile(name);
    if (path.isEmpty()) {
        SaveNew(name, store);
    } else {
        // What cannot be read now must not be written over later with the values of another one.
        const platform::PropertyFile readable(path);
        store.SetStorageFile(path);
    }
}

void PhotoProfiles::SaveNew(const QString& name, ProfileStore& store) const {
    ProfileIndex::Check(name);
    const QString bound = store.StorageFile();
    try {
        const QString file = platform::CreateUniqueFile(dataFolder_, PhotoFilePrefix);
        const QString path = platform::JoinPath(dataFolder_, file);
        QFile::remove(AdditionsFile(path));  // of a profile whose record was deleted by hand
        store.SetStorageFile(path);
        Record(name, file);
    } catch (const platform::UnflushedError&) {
        throw;  // the profile is there
    } catch (const std::exception&) {
        // Else what is stored later would go into a file that no profile knows.
        if (store.StorageFile() != bound) {
            QFile::remove(store.StorageFile());
            store.SetStorageFile(bound);
        }
        throw platform::Error(u"Can not save this profile settings!"_s);
    }
}

void PhotoProfiles::Record(const QString& name, const QString& fileName) const {
    index_.Record(name, fileName);
}

QString PhotoProfiles::Delete(const QString& name) const {
    const QString additions = AdditionsFile(index_.NamedFile(name));
    QString left = index_.Remove(name);
    if (additions.isEmpty() || !platform::IsFile(additions) || QFile::remove(additions)) {
        return left;
    }
    return left.isEmpty() ? additions : left;
}

}  // namespace kadrona::core
