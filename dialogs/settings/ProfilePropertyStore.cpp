#include "dialogs/settings/ProfilePropertyStore.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QLineEdit>

#include "core/settings/AdditionsFile.h"

namespace kadrona::dialogs {

using core::ProfileProperty;

namespace {

void SetDefault(const core::ProfileEntry& entry, QWidget& control) {
    switch (entry.property) {
        case ProfileProperty::Checked:
            return dynamic_cast<QAbstractButton&>(control).setChecked(entry.checked);
        case ProfileProperty::Text:
            return dynamic_cast<QLineEdit&>(control).setText(entry.text);
        case ProfileProperty::ItemIndex:
        case ProfileProperty::List:
            return dynamic_cast<QComboBox&>(control).setCurrentIndex(entry.itemIndex);
        case ProfileProperty::Number:
            return controls::SetSteps(dynamic_cast<QDoubleSpinBox&>(control), entry.number);
    }
}

void AddTo(controls::PropertyStore& store, const core::ProfileEntry& entry, QWidget& control) {
    switch (entry.property) {
        case ProfileProperty::Checked:
            return store.AddChecked(dynamic_cast<QAbstractButton&>(control));
        case ProfileProperty::Text:
            return store.AddText(dynamic_cast<QLineEdit&>(control));
        case ProfileProperty::ItemIndex:
            return store.AddItemIndex(dynamic_cast<QComboBox&>(control));
        case ProfileProperty::List:
            return store.AddList(dynamic_cast<QComboBox&>(control));
        case ProfileProperty::Number:
            return store.AddNumber(dynamic_cast<QDoubleSpinBox&>(control));
    }
}

}  // namespace

void ProfilePropertyStore::Add(const core::ProfileEntry& entry, QWidget& control) {
    SetDefault(entry, control);
    const bool addition = core::IsAddition(entry);
    AddTo(addition ? additions_ : record_, entry, control);
    if (addition) {
        added_.push_back({entry, &control});
    }
}

void ProfilePropertyStore::SetStorageFile(const QString& path) {
    record_.SetStorageFile(path);
    additions_.SetStorageFile(record_.HasFile() ? core::AdditionsFile(path) : path);
}

bool ProfilePropertyStore::IsUnwritten() const {
    const QFileInfo file(StorageFile());
    return record_.HasFile() && file.exists() && file.size() == 0;
}

void ProfilePropertyStore::Store() const {
    record_.Store();
    additions_.Store();
}

void ProfilePropertyStore::StoreUnwritten() const {
    if (IsUnwritten()) {
        Store();
    }
}

void ProfilePropertyStore::Restore() const {
    record_.Restore();
    if (!IsUnwritten()) {
        for (const Addition& addition : added_) {
            SetDefault(addition.entry, *addition.control);
        }
    }
    additions_.Restore();
}

}  // namespace kadrona::dialogs
