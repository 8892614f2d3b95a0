#pragma once

#include "core/settings/Settings.h"
#include "platform/PropertyFile.h"

namespace kadrona::core {

/// The settings of one stored photo profile, read straight from its files, for making
/// sheets without a window. What the files do not hold has the value of ProfileRecord or
/// ProfileAdditions.
class StoredSettings : public Settings {
 public:
    /// `profileFile` may be empty or missing. Throws platform::FileError when an existing file
    /// cannot be read.
    explicit StoredSettings(const QString& profileFile);

    bool Checked(const ProfileEntry& entry) const override;
    int ItemIndex(const ProfileEntry& entry) const override;
    QString Text(const ProfileEntry& entry) const override;
    int Number(const ProfileEntry& entry) const override;

 private:
    const platform::PropertyFile& FileOf(const ProfileEntry& entry) const;

    platform::PropertyFile record_;
    platform::PropertyFile additions_;
};

}  // namespace kadrona::core
