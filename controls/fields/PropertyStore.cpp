#include "controls/fields/PropertyStore.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <cmath>
#include <optional>

#include "controls/fields/RememberedChoice.h"
#include "platform/PropertyFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

using platform::PropertyFile;

const QString Checked = u"Checked"_s;
const QString Text = u"Text"_s;
const QString ItemIndex = u"ItemIndex"_s;
const QString Value = u"Value"_s;
const QString Items = u"Properties.Items"_s;

QStringList ItemsOf(const QComboBox& box) {
    QStringList items;
    for (int i = 0; i < box.count(); ++i) {
        items.append(box.itemText(i));
    }
    return items;
}

void RestoreList(QComboBox& box, const PropertyFile& file) {
    const std::optional<QStringList> items = file.ReadList(box.objectName(), Items);
    const int index = file.ReadInteger(box.objectName(), ItemIndex).value_or(box.currentIndex());
    const int oldIndex = box.currentIndex();
    const QString oldText = box.currentText();
    {
        const QSignalBlocker blocker(box);
        if (items) {
            box.clear();
            box.addItems(*items);
        }
        const QString text = file.ReadText(box.objectName(), Text).value_or(QString());
        box.setCurrentIndex(RememberedChoice(ItemsOf(box), text, index));
    }
    if (box.currentIndex() != oldIndex) {
        Q_EMIT box.currentIndexChanged(box.currentIndex());
    }
    if (box.currentText() != oldText) {
        Q_EMIT box.currentTextChanged(box.currentText());
    }
}

}  // namespace

int StepsOf(const QDoubleSpinBox& field) {
    return int(std::lround(field.value() * std::pow(10, field.decimals())));
}

void SetSteps(QDoubleSpinBox& field, int steps) {
    field.setValue(steps / std::pow(10, field.decimals()));
}

void PropertyStore::AddChecked(QAbstractButton& button) {
    const QString name = button.objectName();
    entries_.push_back({[&button, name](PropertyFile& file) {
                            file.WriteBoolean(name, Checked, button.isChecked());
                        },
                        [&button, name](const PropertyFile& file) {
                            button.setChecked(
                                file.ReadBoolean(name, Checked).value_or(button.isChecked()));
                        }});
}

void PropertyStore::AddText(QLineEdit& edit) {
    const QString name = edit.objectName();
    entries_.push_back(
        {[&edit, name](PropertyFile& file) { file.WriteText(name, Text, edit.text()); },
         [&edit, name](const PropertyFile& file) {
             edit.setText(file.ReadText(name, Text).value_or(edit.text()));
         }});
}

void PropertyStore::AddItemIndex(QComboBox& box) {
    const QString name = box.objectName();
    entries_.push_back({[&box, name](PropertyFile& file) {
                            file.WriteInteger(name, ItemIndex, box.currentIndex());
                        },
                        [&box, name](const PropertyFile& file) {
                            const int index =
                                file.ReadInteger(name, ItemIndex).value_or(box.currentIndex());
                            if (index >= -1 && index < box.count()) {
                                box.setCurrentIndex(index);
                            }
                        }});
}

void PropertyStore::AddList(QComboBox& box) {
    entries_.push_back({[&box](PropertyFile& file) {
                            const QString name = box.objectName();
                            file.WriteInteger(name, ItemIndex, box.currentIndex());
                            file.WriteList(name, Items, ItemsOf(box));
                            file.WriteText(name, Text, box.currentText());
                        },
                        [&box](const PropertyFile& file) { RestoreList(box, file); }});
}

void PropertyStore::AddNumber(QDoubleSpinBox& field) {
    const QString name = field.objectName();
    entries_.push_back(
        {[&field, name](PropertyFile& file) { file.WriteInteger(name, Value, StepsOf(field)); },
         [&field, name](const PropertyFile& file) {
             const int before = StepsOf(field);
             const int steps = file.ReadInteger(name, Value).value_or(before);
             SetSteps(field, steps);
             if (StepsOf(field) != steps) {
                 SetSteps(field, before);
             }
         }});
}

bool PropertyStore::HasFile() const {
    return storageFile_ != u"empty"_s;
}

void PropertyStore::Store() const {
    if (!HasFile()) {
        return;
    }
    PropertyFile file(storageFile_);
    for (const Entry& entry : entries_) {
        entry.store(file);
    }
    file.Save();
}

void PropertyStore::Restore() const {
    if (!HasFile()) {
        return;
    }
    const PropertyFile file(storageFile_);
    for (const Entry& entry : entries_) {
        entry.restore(file);
    }
}

}  // namespace kadrona::controls
