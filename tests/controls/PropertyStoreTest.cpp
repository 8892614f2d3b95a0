#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "controls/fields/PropertyStore.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyFile.h"

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

class PropertyStoreTest : public testing::Test {
 protected:
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"pro1A.tmp"_s);
};

TEST_F(PropertyStoreTest, EveryControlComesBackAsItWasStored) {
    for (const QStringList& names : {QStringList{u"Laser"_s, u""_s, u"Größe"_s}, QStringList()}) {
        Page stored;
        stored.check.setChecked(true);
        stored.right.setChecked(true);
        stored.edit.setText(u" Bild;name #1 = \"x\" "_s);
        stored.fixed.setCurrentIndex(names.isEmpty() ? -1 : 1);
        stored.list.clear();
        stored.list.addItems(names);
        stored.list.setCurrentIndex(names.isEmpty() ? -1 : 2);
        stored.store.SetStorageFile(path_);
        stored.store.Store();

        Page restored;
        QSignalSpy listChanges(&restored.list, &QComboBox::currentIndexChanged);
        restored.store.SetStorageFile(path_);
        restored.store.Restore();
        EXPECT_TRUE(restored.check.isChecked());
        EXPECT_FALSE(restored.left.isChecked());
        EXPECT_TRUE(restored.right.isChecked());
        EXPECT_EQ(restored.edit.text(), stored.edit.text());
        EXPECT_EQ(restored.fixed.currentIndex(), stored.fixed.currentIndex());
        EXPECT_EQ(ItemsOf(restored.list), names);
        EXPECT_EQ(restored.list.currentIndex(), stored.list.currentIndex());
        EXPECT_EQ(listChanges.count(), 1);
    }
}

TEST_F(PropertyStoreTest, WithoutAFileNothingIsReadOrWritten) {
    QFile::remove(u"empty"_s);
    Page page;
    EXPECT_EQ(page.store.StorageFile(), u"empty"_s);
    page.store.Store();
    page.store.Restore();
    EXPECT_FALSE(QFile::exists(u"empty"_s));
    page.ExpectDesignValues();
}

TEST_F(PropertyStoreTest, MissingPropertiesLeaveTheControls) {
    Page page;
    page.store.SetStorageFile(path_);
    page.store.Restore();  // no file
    page.ExpectDesignValues();

    platform::PropertyFile properties(path_);
    properties.WriteBoolean(u"Check"_s, u"Checked"_s, true);
    properties.Save();
    page.store.Restore();
    EXPECT_TRUE(page.check.isChecked());
    page.check.setChecked(false);
    page.ExpectDesignValues();
}

TEST_F(PropertyStoreTest, WrongTypesAndIndexesBeyondTheItems) {
    const struct {
        QString check, fixedIndex, listIndex;
    } rows[] = {{u"vielleicht"_s, u"2"_s, u"7"_s}, {u""_s, u"eins"_s, u"-99999999999999"_s}};
    for (const auto& row : rows) {
        const QString text =
            u"[Check]\nChecked=%1\n[Fixed]\nItemIndex=%2\n[List]\nItemIndex=%3\n"
            "Properties.Items=keine Liste\n"_s;
        platform::WriteFileAtomically(path_,
                                      text.arg(row.check, row.fixedIndex, row.listIndex).toUtf8());
        Page page;
        page.fixed.setCurrentIndex(1);
        page.store.SetStorageFile(path_);
        page.store.Restore();
        EXPECT_FALSE(page.check.isChecked());
        EXPECT_EQ(page.fixed.currentIndex(), 1);
        EXPECT_EQ(ItemsOf(page.list), QStringList{u"design"_s});
        EXPECT_EQ(page.list.currentIndex(), row.listIndex == u"7"_s ? -1 : 0);
    }
}

TEST_F(PropertyStoreTest, DamagedFilesChangeNothing) {
    Page page;
    page.store.SetStorageFile(path_);
    for (const QByteArray& content :
         {QByteArray(), QByteArray("[Check\nChecked=1"),
          QByteArray("\xff\xfe\x00\x01[[[]]]===\n=\n", 16), QByteArray(5000, '\0'),
          QByteArray("[List]\nProperties.Items=-3\n")}) {
        platform::WriteFileAtomically(path_, content);
        EXPECT_NO_THROW(page.store.Restore());
        page.ExpectDesignValues();
    }
}

}  // namespace
}  // namespace kadrona::controls
