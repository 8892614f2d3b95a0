// Photo and printer profiles: an index and a settings file for each.

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

#include "core/settings/StoredSettings.h"
#include "platform/IniFile.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Errors.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class FakeStore : public core::ProfileStore {
 public:
    QString StorageFile() const override { return file; }
    void SetStorageFile(const QString& path) override { file = path; }
    QString file = u"empty"_s;
};

class Profiles : public ::testing::Test {
 protected:
    QStringList SettingsFiles() const {
        return QDir(data.DataFolder()).entryList({u"*.tmp"_s}, QDir::Files, QDir::Name);
    }
    /// The photo profiles, joined.
    QString Names() const { return data.GetProfileList().join(u'|'); }
    void Save(const QString& name) { data.SaveNewProfile(name, store); }
    void MakeReadOnly(const char* file) {
        ASSERT_TRUE(QFile::setPermissions(installation.DataFile(file), QFile::ReadOwner));
    }

    Installation installation;
    FakeInterface ui;
    FakePrinter printer;
    FakeStore store;
    core::TData data{ui, installation.Folders(), &printer};
};

TEST_F(Profiles, TheFirstPhotoProfileGetsItsSectionAndAnEmptyFile) {
    EXPECT_EQ(Names(), QString());
    Save(u"Standard Profile"_s);
    EXPECT_EQ(Names(), u"Standard Profile"_s);
    EXPECT_TRUE(QRegularExpression(u"^%1/pro[0-9A-Fa-f]{1,4}\\.tmp$"_s.arg(data.DataFolder()))
                    .match(store.file)
                    .hasMatch())
        << store.file.toStdString();
    EXPECT_EQ(QFileInfo(store.file).size(), 0);
    EXPECT_EQ(data.ProfileFile(u"standard profile"_s), store.file) << "names ignore case";
}

TEST_F(Profiles, LoadingAPhotoProfileBindsItAndEachHasAFileOfItsOwn) {
    Save(u"A"_s);
    const QString first = store.file;
    Save(u"A"_s);
    EXPECT_NE(store.file, first) << "a name saved anew gets a fresh file";
    data.LoadProfile(u"Laden Straße"_s, store);
    const QString made = store.file;
    data.LoadProfile(u"A"_s, store);
    data.LoadProfile(u"LADEN STRAßE"_s, store);
    EXPECT_EQ(store.file, made);
    EXPECT_EQ(Names(), u"A|Laden Straße"_s);
    ASSERT_TRUE(QFile::remove(made));
    data.LoadProfile(u"Laden Straße"_s, store);
    EXPECT_TRUE(QFile::exists(store.file)) << "a vanished file is made anew";
    EXPECT_EQ(data.ProfileFile(u"Laden Straße"_s), store.file);
    EXPECT_EQ(Names(), u"A|Laden Straße"_s);
}

TEST_F(Profiles, BlanksAroundANameMakeNoOtherProfileAndSomeNamesAreRefused) {
    Save(u"Laden"_s);
    Save(u"Laden "_s);
    EXPECT_EQ(data.ProfileFile(u" laden"_s), store.file);
    for (const QString& name : {u"a]b"_s, u"a\tb"_s, u"zwei\nZeilen"_s}) {
        EXPECT_TRUE(TextOf([&] { Save(name); }).contains(u"Steuerzeichen"_s));
    }
    EXPECT_EQ(Names(), u"Laden"_s);
}

TEST_F(Profiles, APhotoProfileIsBoundAndDeletedOnlyWhereThatSucceeds) {
    Save(u"A"_s);
    const QString first = store.file;
    Save(u"B"_s);
    installation.Write("common/Kadrona/" + QFileInfo(first).fileName().toUtf8(),
                       QByteArray(20 << 20, '\n'));
    EXPECT_THROW(data.LoadProfile(u"A"_s, store), platform::FileError);
    EXPECT_NE(store.file, first);
    QFile::remove(first);
    QDir().mkdir(first);
    EXPECT_TRUE(
        TextOf([&] { data.LoadProfile(u"A"_s, store); }).contains(first + u"“ ist ein Ordner"_s));
    EXPECT_EQ(Names(), u"A|B"_s);
    EXPECT_TRUE(QDir().rmdir(first) && QFile::copy(store.file, first));
    MakeReadOnly("Profiles.ini");
    EXPECT_THROW(data.DeleteProfile(u"B"_s), platform::FileError);
    EXPECT_TRUE(QFile::exists(store.file)) << "the index goes first";
    const QString bound = store.file;
    EXPECT_EQ(TextOf([&] { Save(u"C"_s); }), u"Can not save this profile settings!"_s);
    EXPECT_EQ(store.file, bound);
    EXPECT_EQ(SettingsFiles().size(), 2) << "nor is its file left";
}

TEST_F(Profiles, DeletingAPhotoProfileRemovesSectionAndFileEvenWhereTheFileIsGone) {
    Save(u"A"_s);
    Save(u"B"_s);
    EXPECT_TRUE(data.DeleteProfile(u"B"_s));
    EXPECT_FALSE(QFile::exists(store.file));
    QFile::remove(data.ProfileFile(u"A"_s));
    EXPECT_TRUE(data.DeleteProfile(u"A"_s));
    EXPECT_EQ(Names(), QString());
}

TEST_F(Profiles, StoredSettingsReadTheFileAndFallBackToTheDesignValues) {
    installation.Write("common/Kadrona/pro1.tmp",
                       "[FrameSize]\nText=\"40\"\n[RotateBeforeTileImg]\nChecked=true\n"
                       "[ImageCount]\nItemIndex=garbage\n[ImgAutoRotate]\nChecked=false\n"
                       "[SchabloneBox]\nItemIndex=2\n");
    const core::StoredSettings settings(installation.DataFile("pro1.tmp"));
    EXPECT_EQ(core::FrameSizeOf(settings), 40);
    EXPECT_TRUE(settings.RotateBeforeTileImg() && !settings.ImgAutoRotate());
    EXPECT_EQ(settings.ImageCount(), 0);
    EXPECT_EQ(settings.SchabloneBox(), 2);
    EXPECT_EQ(settings.FileNameEd(), u"Bildname"_s);

    const core::StoredSettings empty{QString()};
    EXPECT_EQ(core::FrameSizeOf(empty), 25);
    EXPECT_TRUE(empty.ImgAutoRotate() && !empty.RotateBeforeTileImg());
    EXPECT_EQ(empty.SchabloneBox(), -1);
}

TEST_F(Profiles, EachPrinterProfileHasASectionAtTheEndAndAFileOfItsOwn) {
    const QStringList names{u"Zeta"_s, u"Foto 10x15 = glänzend"_s, u"Alpha"_s};
    for (const QString& name : names) {
        EXPECT_TRUE(data.SavePrintProfile(name));
    }
    EXPECT_EQ(data.GetPrinterProfileList(), names);
    const platform::IniFile index(installation.DataFile("Printerprofiles42.ini"));
    const QRegularExpression form(u"^prn[0-9A-Fa-f]{1,4}\\.tmp$"_s);
    QStringList named;
    for (const QString& name : names) {
        named.append(index.ReadString(name, u"Profile"_s));
        EXPECT_TRUE(form.match(named.last()).hasMatch()) << named.last().toStdString();
    }
    named.sort();
    EXPECT_EQ(SettingsFiles(), named);
    data.DeletePrinterProfile(names[1]);
    EXPECT_EQ(SettingsFiles().size(), 2);
    EXPECT_EQ(data.GetPrinterProfileList(), (QStringList{names[0], names[2]}));
}

TEST_F(Profiles, LoadingAPrinterProfileBringsThePrinterWithAllItsOptionsBack) {
    const printing::PrinterChoice letter = FakePrinter::Choice("Laser", "");
    const printing::PrinterChoice photo = printer.current =
        FakePrinter::Choice("Fotodrucker", "PageSize=A6\nInputSlot=Tray2\ncopies=2\n");
    data.SavePrintProfile(u"Foto"_s);
    printer.current = letter;
    data.SavePrintProfile(u"Brief"_s);
    data.LoadPrintProfile(u"FOTO"_s);
    EXPECT_EQ(printer.current, photo);
    data.LoadPrintProfile(u"Brief"_s);
    EXPECT_EQ(printer.current, letter);
}

TEST_F(Profiles, WhatIsMissingOrLeadsElsewhereIsSkipped) {
    const printing::PrinterChoice before = printer.current;
    installation.Write("precious.txt", "precious");
    installation.Write("common/Kadrona/Printerprofiles42.ini",
                       "[Gone]\nProfile=prn1.tmp\n[Empty]\n[Evil]\nProfile=../../precious.txt\n"
                       "[Other]\nProfile=pro1.tmp\n");
    installation.Write("common/Kadrona/pro1.tmp", "of a photo profile");
    for (const QString& name : {u"Gone"_s, u"Empty"_s, u"Evil"_s, u"Other"_s, u"Unknown"_s}) {
        data.LoadPrintProfile(name);
        EXPECT_EQ(printer.current, before) << name.toStdString();
        data.DeletePrinterProfile(name);
    }
    EXPECT_TRUE(data.GetPrinterProfileList().isEmpty());
    EXPECT_TRUE(QFile::exists(installation.Path("precious.txt")));
    EXPECT_EQ(SettingsFiles(), QStringList(u"pro1.tmp"_s));
}

TEST_F(Profiles, AFailureLeavesThePrinterProfilesAsTheyWere) {
    data.SavePrintProfile(u"Gut"_s);
    for (const QString& name : {u"Glanz [10x15]"_s, u"  "_s, u"zwei\nZeilen"_s}) {
        EXPECT_THROW(data.SavePrintProfile(name), platform::Error) << name.toStdString();
    }
    printer.failure = u"Kein Drucker vorhanden."_s;
    EXPECT_THROW(data.SavePrintProfile(u"Ohne Drucker"_s), printing::PrinterError);
    const core::TData withoutService(ui, installation.Folders());
    EXPECT_THROW(withoutService.SavePrintProfile(u"Ohne Druckdienst"_s), printing::PrinterError);
    printer.failure.clear();
    MakeReadOnly("Printerprofiles42.ini");
    EXPECT_THROW(data.DeletePrinterProfile(u"Gut"_s), platform::FileError);
    EXPECT_THROW(data.SavePrintProfile(u"B"_s), platform::FileError);
    EXPECT_EQ(data.GetPrinterProfileList(), QStringList(u"Gut"_s));
    EXPECT_EQ(SettingsFiles().size(), 1);
    const printing::PrinterChoice saved = std::exchange(printer.current, {});
    data.LoadPrintProfile(u"Gut"_s);
    EXPECT_EQ(printer.current, saved);
}

}  // namespace kadrona::testing
