#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

#include "platform/IniFile.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class PrinterProfiles : public ::testing::Test {
 protected:
    QStringList SettingsFiles() const {
        return QDir(data.DataFolder()).entryList({u"*.tmp"_s}, QDir::Files, QDir::Name);
    }

    Installation installation;
    FakeInterface ui;
    FakePrinter printer;
    core::TData data{ui, installation.Folders(), &printer};
};

TEST_F(PrinterProfiles, EachProfileHasASectionAtTheEndAndAFileOfItsOwn) {
    const QStringList names{u"Zeta"_s, u"Foto 10x15 = glänzend"_s, u"Alpha"_s};
    EXPECT_TRUE(data.GetPrinterProfileList().isEmpty());
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

TEST_F(PrinterProfiles, LoadingBringsThePrinterWithAllItsOptionsBack) {
    const printing::PrinterChoice photo =
        FakePrinter::Choice("Fotodrucker", "PageSize=A6\nInputSlot=Tray2\ncopies=2\n");
    printer.current = photo;
    data.SavePrintProfile(u"Foto"_s);
    printer.current = FakePrinter::Choice("Laser", "");
    data.SavePrintProfile(u"Brief"_s);

    data.LoadPrintProfile(u"FOTO"_s);
    EXPECT_EQ(printer.current, photo);
    data.LoadPrintProfile(u"Brief"_s);
    EXPECT_EQ(printer.current, FakePrinter::Choice("Laser", ""));
}

TEST_F(PrinterProfiles, WhatIsMissingOrLeadsElsewhereIsSkipped) {
    const printing::PrinterChoice before = printer.current;
    installation.Write("precious.txt", "precious");
    installation.Write("common/Kadrona/Printerprofiles42.ini",
                       "[Gone]\nProfile=prn1.tmp\n[Empty]\n[Evil]\nProfile=../../precious.txt\n");
    for (const QString& name : {u"Gone"_s, u"Empty"_s, u"Evil"_s, u"Unknown"_s}) {
        data.LoadPrintProfile(name);
        EXPECT_EQ(printer.current, before) << name.toStdString();
        data.DeletePrinterProfile(name);
    }
    EXPECT_TRUE(data.GetPrinterProfileList().isEmpty());
    EXPECT_TRUE(QFile::exists(installation.Path("precious.txt")));
}

TEST_F(PrinterProfiles, AFailedSaveLeavesNeitherFileNorSection) {
    data.SavePrintProfile(u"Gut"_s);
    for (const QString& name : {u"Glanz [10x15]"_s, u"  "_s, u"zwei\nZeilen"_s}) {
        EXPECT_THROW(data.SavePrintProfile(name), platform::Error) << name.toStdString();
    }
    printer.failure = u"Kein Drucker vorhanden."_s;
    EXPECT_THROW(data.SavePrintProfile(u"Ohne Drucker"_s), printing::PrinterError);
    const core::TData withoutService(ui, installation.Folders());
    EXPECT_THROW(withoutService.SavePrintProfile(u"Ohne Druckdienst"_s), printing::PrinterError);
    EXPECT_EQ(data.GetPrinterProfileList(), QStringList(u"Gut"_s));
    EXPECT_EQ(SettingsFiles().size(), 1);
}

TEST_F(PrinterProfiles, AnIndexThatCannotBeWrittenKeepsTheProfileWhole) {
    data.SavePrintProfile(u"A"_s);
    QFile index(installation.DataFile("Printerprofiles42.ini"));
    ASSERT_TRUE(index.setPermissions(QFile::ReadOwner));
    EXPECT_THROW(data.DeletePrinterProfile(u"A"_s), platform::FileError);
    EXPECT_THROW(data.SavePrintProfile(u"B"_s), platform::FileError);
    EXPECT_EQ(SettingsFiles().size(), 1);
    const printing::PrinterChoice saved = std::exchange(printer.current, {});
    data.LoadPrintProfile(u"A"_s);
    EXPECT_EQ(printer.current, saved);
}

}  // namespace kadrona::testing
