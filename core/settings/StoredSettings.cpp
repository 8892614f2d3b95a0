#include "core/settings/StoredSettings.h"

#include "core/settings/ArchiveFolder.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

StoredSettings::StoredSettings(const QString& profileFile) : file_(profileFile) {}

bool StoredSettings::Checked(const ProfileEntry& entry) const {
    return file_.ReadBoolean(entry.control, u"Checked"_s).value_or(entry.checked);
}

int StoredSettings::ItemIndex(const ProfileEntry& entry) const {
    return file_.ReadInteger(entry.control, u"ItemIndex"_s).value_or(entry.itemIndex);
}

QString StoredSettings::Text(const ProfileEntry& entry) const {
    if (entry.control == ArchiveFolderEntry.control) {
        return ArchiveFolder();
    }
    return file_.ReadText(entry.control, u"Text"_s).value_or(entry.text);
}

}  // namespace kadrona::core
