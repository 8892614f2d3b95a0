#pragma once

#include "core/profiles/ProfileIndex.h"
#include "core/profiles/ProfileStore.h"

namespace kadrona::core {

/// The profile that is always there.
inline const QString StandardProfile = QStringLiteral("Standard Profile");

/// The photo profiles: "Profiles.ini" and the settings files that it names. Operations throw
/// platform::Error.
class PhotoProfiles {
 public:
    explicit PhotoProfiles(const QString& dataFolder);

    QStringList Names() const { return index_.Names(); }
    /// Full path of a profile's settings file; empty when the profile or its file is missing.
    QString SettingsFile(const QString& name) const { return index_.SettingsFile(name); }

    /// Binds `store` to the profile's file; one that is missing is made anew, empty. One that
    /// cannot be read throws, and the store stays bound to what it was.
    void Load(const QString& name, ProfileStore& store) const;
    /// Makes an empty settings file, binds `store` to it and records the name, which is refused as
    /// ProfileIndex::Check says. Where that fails
    /// the store stays bound to what it was, and no file is left.
    void SaveNew(const QString& name, ProfileStore& store) const;
    void Record(const QString& name, const QString& fileName) const;
    /// See ProfileIndex::Remove; the profile's additions go too.
    QString Delete(const QString& name) const;

 private:
    QString dataFolder_;
    ProfileIndex index_;
};

}  // namespace kadrona::core
