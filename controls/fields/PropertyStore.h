#pragma once

#include <QString>
#include <functional>
#include <vector>

class QAbstractButton;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QWidget;

namespace kadrona::platform {
class PropertyFile;
}

namespace kadrona::controls {

/// A field's number in units of its last decimal: 2.5 with one decimal is 25.
int StepsOf(const QDoubleSpinBox& field);
void SetSteps(QDoubleSpinBox& field, int steps);

/// Stores listed properties of controls in one file and restores them, under the controls' object
/// names. The controls must outlive the store, and their names must be set when they are added.
///
/// What a file does not hold, or holds in a wrong type, leaves the control as it is.
class PropertyStore {
 public:
    /// "Checked". Of radio buttons in one group, the one stored as checked wins.
    void AddChecked(QAbstractButton& button);

    /// "Text".
    void AddText(QLineEdit& edit);

    /// "ItemIndex" of a box whose items are fixed. -1 is no choice; an index beyond the items is
    /// ignored.
    void AddItemIndex(QComboBox& box);

    /// "ItemIndex", "Properties.Items" and "Text" of a box whose items are stored too. Restoring
    /// replaces the items, then chooses as RememberedChoice does. The box sends
    /// its change signals once, when the choice has changed in the end.
    void AddList(QComboBox& box);

    /// "Value", in units of the field's last decimal. A number beyond the field's range is ignored.
    void AddNumber(QDoubleSpinBox& field);

    /// The literal "empty" until a file is set.
    const QString& StorageFile() const { return storageFile_; }
    void SetStorageFile(const QString& path) { storageFile_ = path; }
    bool HasFile() const;

    /// Writes all properties; what else the file holds is kept. Does nothing while no file is set.
    /// Throws platform::Error.
    void Store() const;

    /// Reads all properties; a missing file changes nothing. Does nothing while no file is set.
    /// Throws platform::Error.
    void Restore() const;

 private:
    struct Entry {
        std::function<void(platform::PropertyFile&)> store;
        std::function<void(const platform::PropertyFile&)> restore;
    };

    QString storageFile_ = QStringLiteral("empty");
    std::vector<Entry> entries_;
};

}  // namespace kadrona::controls
