#pragma once

#include <vector>

#include "controls/fields/PropertyStore.h"
#include "core/profiles/ProfileStore.h"
#include "core/settings/ProfileRecord.h"

namespace kadrona::dialogs {

/// The property store of the settings dialog, as the data module binds it to a profile's file: the
/// record in that file, the additions in the one beside it. Throws as controls::PropertyStore does.
class ProfilePropertyStore : public core::ProfileStore {
 public:
    /// Sets the control to the entry's value while nothing is stored, and keeps it from then on.
    /// The control has the kind that the entry's property asks for and outlives the store.
    void Add(const core::ProfileEntry& entry, QWidget& control);

    QString StorageFile() const override { return record_.StorageFile(); }
    void SetStorageFile(const QString& path) override;

    void Store() const;
    /// The additions alone, between the moments at which a profile's record is written.
    void StoreAdditions() const { additions_.Store(); }
    /// Both files where the record's is still empty.
    void StoreUnwritten() const;
    /// A record that misses a property leaves its control as it is, so that a new profile starts
    /// with what the controls show; additions that a written profile misses take their own values,
    /// else they would be those of the profile before.
    void Restore() const;

 private:
    struct Addition {
        core::ProfileEntry entry;
        QWidget* control;
    };

    bool IsUnwritten() const;

    controls::PropertyStore record_;
    controls::PropertyStore additions_;
    std::vector<Addition> added_;
};

}  // namespace kadrona::dialogs
