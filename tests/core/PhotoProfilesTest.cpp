#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

#include "core/settings/StoredSettings.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class FakeStore : public core::ProfileStore {
 public:
    QString StorageFile() const override { return file; }
    void SetStorageFile(const QString& path) override { file = path; }
    QString file = u"empty"_s;
};

class PhotoProfiles : public ::testing::Test {
 protected:
    Installation installation;
    FakeInterface ui;
    core::TData data{ui, installation.Folders()};
    FakeStore store;
};

TEST_F(PhotoProfiles, TheFirstProfileGetsItsSectionAndAnEmptyFile) {
    EXPECT_TRUE(data.GetProfileList().isEmpty());
    EXPECT_TRUE(data.SaveNewProfile(u"Standard Profile"_s, store));
    EXPECT_EQ(data.GetProfileList(), QStringList(u"Standard Profile"_s));
    const QFileInfo file(store.file);
    EXPECT_EQ(file.path(), data.DataFolder());
    EXPECT_TRUE(
        QRegularExpression(u"^pro[0-9A-Fa-f]{1,4}\\.tmp$"_s).match(file.fileName()).hasMatch())
        << file.fileName().toStdString();
    EXPECT_EQ(file.size(), 0);
    EXPECT_EQ(data.ProfileFile(u"standard profile"_s), store.file) << "names ignore case";
}

TEST_F(PhotoProfiles, AVanishedFileIsMadeAnew) {
    data.SaveNewProfile(u"A"_s, store);
    data.SaveNewProfile(u"B"_s, store);
    const QString before = store.file;
    ASSERT_TRUE(QFile::remove(before));
    data.LoadProfile(u"B"_s, store);
    EXPECT_TRUE(QFile::exists(store.file));
    EXPECT_EQ(data.ProfileFile(u"B"_s), store.file);
    EXPECT_EQ(data.GetProfileList(), (QStringList{u"A"_s, u"B"_s}));
}

TEST_F(PhotoProfiles, LoadingBindsAndEachProfileHasAFileOfItsOwn) {
    data.SaveNewProfile(u"A"_s, store);
    const QString first = store.file;
    data.SaveNewProfile(u"A"_s, store);
    EXPECT_NE(store.file, first) << "a name saved anew gets a fresh file";
    data.LoadProfile(u"Laden Straße"_s, store);
    EXPECT_EQ(data.GetProfileList(), (QStringList{u"A"_s, u"Laden Straße"_s}));
    data.LoadProfile(u"LADEN STRAßE"_s, store);
    EXPECT_EQ(data.GetProfileList().size(), 2);
}

TEST_F(PhotoProfiles, BlanksAroundANameMakeNoOtherProfileAndSomeNamesAreRefused) {
    data.SaveNewProfile(u"Laden"_s, store);
    data.SaveNewProfile(u"Laden "_s, store);
    EXPECT_EQ(data.GetProfileList(), QStringList(u"Laden"_s));
    EXPECT_EQ(data.ProfileFile(u" laden"_s), store.file);
    for (const QString& name : {u"a]b"_s, u"a\tb"_s, u"zwei\nZeilen"_s}) {
        EXPECT_TRUE(TextOf([&] { data.SaveNewProfile(name, store); }).contains(u"Steuerzeichen"_s));
    }
    EXPECT_EQ(data.GetProfileList(), QStringList(u"Laden"_s));
}

TEST_F(PhotoProfiles, AProfileIsBoundAndDeletedOnlyWhereThatSucceeds) {
    data.SaveNewProfile(u"A"_s, store);
    const QString first = store.file;
    data.SaveNewProfile(u"B"_s, store);
    installation.Write("common/Kadrona/" + QFileInfo(first).fileName().toUtf8(),
                       QByteArray(20 << 20, '\n'));
    EXPECT_THROW(data.LoadProfile(u"A"_s, store), platform::FileError);
    EXPECT_NE(store.file, first);
    QFile index(installation.DataFile("Profiles.ini"));
    ASSERT_TRUE(index.setPermissions(QFile::ReadOwner));
    EXPECT_THROW(data.DeleteProfile(u"B"_s), platform::FileError);
    EXPECT_TRUE(QFile::exists(store.file)) << "the index goes first";
}

TEST_F(PhotoProfiles, DeletingRemovesSectionAndFileEvenWhereTheFileIsGone) {
    data.SaveNewProfile(u"A"_s, store);
    data.SaveNewProfile(u"B"_s, store);
    data.DeleteProfile(u"B"_s);
    EXPECT_FALSE(QFile::exists(store.file));
    QFile::remove(data.ProfileFile(u"A"_s));
    data.DeleteProfile(u"A"_s);
    EXPECT_TRUE(data.GetProfileList().isEmpty());
}

TEST_F(PhotoProfiles, AnIndexThatPointsElsewhereDeletesNothingThere) {
    installation.Write("precious.txt", "precious");
    installation.Write("common/Kadrona/Profiles.ini", "[Evil]\nProfilename=../../precious.txt\n");
    data.DeleteProfile(u"Evil"_s);
    EXPECT_TRUE(QFile::exists(installation.Path("precious.txt")));
    EXPECT_TRUE(data.GetProfileList().isEmpty());
}

TEST_F(PhotoProfiles, AFileThatCannotBeMadeGivesTheOneMessage) {
    QDir(data.DataFolder()).removeRecursively();
    installation.Write("common/Kadrona", "in the way");
    EXPECT_EQ(TextOf([&] { data.SaveNewProfile(u"A"_s, store); }),
              u"Can not save this profile settings!"_s);
}

TEST_F(PhotoProfiles, StoredSettingsReadTheFileAndFallBackToTheDesignValues) {
    installation.Write("common/Kadrona/pro1.tmp",
                       "[FrameSize]\nText=\"40\"\n[RotateBeforeTileImg]\nChecked=true\n"
                       "[ImageCount]\nItemIndex=garbage\n[ImgAutoRotate]\nChecked=false\n");
    const core::StoredSettings settings(installation.DataFile("pro1.tmp"));
    EXPECT_EQ(core::FrameSizeOf(settings), 40);
    EXPECT_TRUE(settings.RotateBeforeTileImg());
    EXPECT_EQ(settings.ImageCount(), 0);
    EXPECT_FALSE(settings.ImgAutoRotate());
    EXPECT_EQ(settings.FileNameEd(), u"Bildname"_s);

    const core::StoredSettings empty{QString()};
    EXPECT_EQ(core::FrameSizeOf(empty), 25);
    EXPECT_TRUE(empty.ImgAutoRotate());
    EXPECT_EQ(empty.SchabloneBox(), -1);
}

}  // namespace kadrona::testing
