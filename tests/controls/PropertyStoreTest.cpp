#include <QFile>
#include <QRadioButton>
#include <QTemporaryDir>

#include "controls/fields/PropertyStore.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyFile.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

QStringList ItemsOf(const QComboBox& box) {
    QStringList items;
    for (int i = 0; i < box.count(); ++i) {
        items.append(box.itemText(i));
    }
    return items;
}

// A little settings page with one control of every kind.
struct Page {
    QWidget window;
    QCheckBox check{&window};
    QRadioButton left{&window};
    QRadioButton right{&window};
    QLineEdit edit{&window};
    QComboBox fixed{&window};
    QComboBox list{&window};
    PropertyStore store;

    Page() {
        check.setObjectName(u"Check"_s);
        left.setObjectName(u"Left"_s);
        right.setObjectName(u"Right"_s);
        edit.setObjectName(u"Edit"_s);
        fixed.setObjectName(u"Fixed"_s);
        list.setObjectName(u"List"_s);
        fixed.addItems({u"JPG"_s, u"JP2"_s});
        list.addItems({u"design"_s});
        store.AddChecked(check);
        store.AddChecked(left);
        store.AddChecked(right);
        store.AddText(edit);
        store.AddItemIndex(fixed);
        store.AddList(list);
        left.setChecked(true);
        edit.setText(u"design"_s);
    }

    void ExpectDesignValues() const {
        EXPECT_FALSE(check.isChecked());
        EXPECT_TRUE(left.isChecked());
        EXPECT_EQ(edit.text(), u"design"_s);
        EXPECT_EQ(fixed.currentIndex(), 0);
        EXPECT_EQ(ItemsOf(list), QStringList{u"design"_s});
        EXPECT_EQ(list.currentIndex(), 0);
    }
};

class PropertyStoreTest : public ::testing::Test {
 protected:
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"pro1A.tmp"_s);
};

TEST_F(PropertyStoreTest, EveryControlComesBackAsItWasStored) {
    Page stored;
    stored.store.Store();  // into no file
    stored.store.Restore();
    EXPECT_FALSE(QFile::exists(stored.store.StorageFile()));
    stored.ExpectDesignValues();
    const QStringList names{u"Laser"_s, u""_s, u"Größe"_s};
    stored.check.setChecked(true);
    stored.right.setChecked(true);
    stored.edit.setText(u" Bild;name #1 = \"x\" "_s);
    stored.fixed.setCurrentIndex(-1);
    stored.list.clear();
    stored.list.addItems(names);
    stored.list.setCurrentIndex(2);
    stored.store.SetStorageFile(path_);
    stored.store.Store();

    Page restored;
    QSignalSpy listChanges(&restored.list, &QComboBox::currentIndexChanged);
    restored.store.SetStorageFile(path_);
    restored.store.Restore();
    EXPECT_TRUE(restored.check.isChecked() && restored.right.isChecked());
    EXPECT_FALSE(restored.left.isChecked());
    EXPECT_EQ(restored.edit.text(), stored.edit.text());
    EXPECT_EQ(restored.fixed.currentIndex(), -1);
    EXPECT_EQ(ItemsOf(restored.list), names);
    EXPECT_EQ(restored.list.currentIndex(), 2);
    EXPECT_EQ(listChanges.count(), 1);
}

TEST_F(PropertyStoreTest, WhatAFileDoesNotHoldLeavesTheControls) {
    Page page;
    page.store.SetStorageFile(path_);
    page.store.Restore();  // no file
    page.ExpectDesignValues();
    for (const QByteArray& content :
         {QByteArray(), QByteArray("[Check\nChecked=1"),
          QByteArray("[Check]\nChecked=vielleicht\n"),
          QByteArray("\xff\xfe\x00\x01[[[]]]===\n=\n", 16), QByteArray(5000, '\0'),
          QByteArray("[Fixed]\nItemIndex=2\n[List]\nProperties.Items=-3\n"),
          QByteArray("[Fixed]\nItemIndex=eins\n[List]\nItemIndex=-99999999999999\n")}) {
        platform::WriteFileAtomically(path_, content);
        EXPECT_NO_THROW(page.store.Restore());
        page.ExpectDesignValues();
    }
    platform::PropertyFile partial(path_);
    partial.WriteBoolean(u"Check"_s, u"Checked"_s, true);
    partial.WriteInteger(u"List"_s, u"ItemIndex"_s, 7);
    partial.Save();
    page.store.Restore();
    EXPECT_TRUE(page.check.isChecked());
    EXPECT_EQ(page.list.currentIndex(), -1) << "an index beyond the items";
}

TEST_F(PropertyStoreTest, AChoiceIsItsText) {
    Page page;
    page.store.SetStorageFile(path_);
    page.store.Store();
    platform::PropertyFile file(path_);
    for (const auto& [text, index] : {std::pair(u"B"_s, 1), std::pair(u"gone"_s, -1)}) {
        file.WriteList(u"List"_s, u"Properties.Items"_s, {u"A"_s, u"B"_s});
        file.WriteInteger(u"List"_s, u"ItemIndex"_s, 0);
        file.WriteText(u"List"_s, u"Text"_s, text);
        file.Save();
        page.store.Restore();
        EXPECT_EQ(page.list.currentIndex(), index) << text.toStdString();
    }
}

}  // namespace
}  // namespace kadrona::controls
