#include "core/settings/StoredSettings.h"

#include "core/settings/AdditionsFile.h"
#include "core/settings/ArchiveFolder.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

StoredSettings::StoredSettings(const QString& profileFile)
    : record_(profileFile), additions_(AdditionsFile(profileFile)) {}

const platform::PropertyFile& StoredSettings::FileOf(const ProfileEntry& entry) const {
    return IsAddition(entry) ? additions_ : record_;
}

bool StoredSettings::Checked(const ProfileEntry& entry) const {
    return FileOf(entry).ReadBoolean(entry.control, u"Checked"_s).value_or(entry.checked);
}

int StoredSettings::ItemIndex(const ProfileEntry& entry) const {
    return FileOf(entry).ReadInteger(entry.control, u"ItemIndex"_s).value_or(entry.itemIndex);
}

QString StoredSettings::Text(const ProfileEntry& entry) const {
    if (entry.control == ArchiveFolderEntry.control) {
        return ArchiveFolder();
    }
    return FileOf(entry).ReadText(entry.control, u"Text"_s).value_or(entry.text);
}

int StoredSettings::Number(const ProfileEntry& entry) const {
    return FileOf(entry).ReadInteger(entry.control, u"Value"_s).value_or(entry.number);
}

}  // namespace kadrona::core
