#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "core/StoredSettings.h"
#include "dialogs/BeforePrint.h"
#include "dialogs/PrinterProfiles.h"
#include "dialogs/SettingsDialog.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using controls::ModalResult;

/// Both dialogs over one installation with the printer profiles "A" and "B".
class PrintDialogs : public ::testing::Test {
 protected:
    PrintDialogs() {
        data.SetPrinterLayer(&printer);
        data.SetSettings(&settings);
        data.SetInitHandler([this](core::TData&) { settings.InitPropertys(); });
        data.SavePrintProfile(u"A"_s);
        data.SavePrintProfile(u"B"_s);
        data.InitSystem();
        profiles = std::make_unique<dialogs::TPrintProfilDlg>(data, settings);
        beforePrint.findChild<QTimer*>(u"Timer"_s)->setInterval(20);
    }

    static QStringList Texts(const QWidget& shown) {
        QStringList texts;
        const auto* list = shown.findChild<QListWidget*>(u"lbProfiles"_s);
        for (int row = 0; row < list->count(); ++row) {
            texts.append(list->item(row)->text());
        }
        return texts;
    }

    static void Click(QWidget& shown, const QString& button) {
        shown.findChild<QPushButton*>(button)->click();
    }

    /// What a user does in the profile dialog, which is then closed by its button.
    void InProfiles(const std::function<void(QWidget&)>& steps) {
        driver.Expect(u"PrintProfilDlg"_s, [steps](QWidget& shown) {
            steps(shown);
            Click(shown, u"btnClose"_s);
        });
        EXPECT_EQ(profiles->ShowEx(), ModalResult::Ok);
    }

    void ExpectName(const std::optional<QString>& answer) {
        driver.Expect(u"LineDialog"_s, [answer](QWidget& shown) {
            EXPECT_EQ(shown.windowTitle(), u"New Profile"_s);
            shown.findChild<QLineEdit*>(u"LineEdit"_s)->setText(answer.value_or(u"x"_s));
            Click(shown, answer ? u"OkButton"_s : u"CancelButton"_s);
        });
    }

    void ExpectMessage(const QString& text, const QString& button = u"OkButton"_s) {
        driver.Expect(u"MessageBox"_s, [text, button](QWidget& shown) {
            EXPECT_EQ(dynamic_cast<QMessageBox&>(shown).text(), text);
            Click(shown, button);
        });
    }

    template <typename Control>
    Control& Setting(const QString& name) {
        return *settings.findChild<Control*>(name);
    }

    /// Default profile and immediate printing, stored.
    void PrintAtOnce(int profile) {
        Setting<QComboBox>(u"PrintProfileBox"_s).setCurrentIndex(profile);
        Setting<QCheckBox>(u"PrintAfterCrop"_s).setChecked(true);
        settings.AktivateProfileByName(u"Standard Profile"_s, true);
    }

    Installation installation;
    FakeInterface ui;
    FakePrinter printer;
    ModalDriver driver;
    core::TData data{ui, installation.Folders()};
    dialogs::TEinstellungenFm settings{data};
    std::unique_ptr<dialogs::TPrintProfilDlg> profiles;
    dialogs::TBeforPrintDlgFm beforePrint{data, settings};
};

TEST_F(PrintDialogs, ANewProfileKeepsWhatTheSetupDialogConfirmed) {
    printer.setupChoice = FakePrinter::Choice("Fotodrucker", "PageSize=A6\n");
    InProfiles([this](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle(), u"Druck Profile"_s);
        EXPECT_EQ(Texts(shown), (QStringList{u"A"_s, u"B"_s}));
        ExpectName(u" Foto "_s);
        Click(shown, u"btnNewProfile"_s);
        EXPECT_EQ(Texts(shown).last(), u"Foto"_s);
    });
    EXPECT_EQ(data.GetPrinterProfileList().last(), u"Foto"_s);
    EXPECT_EQ(Setting<QComboBox>(u"PrintProfileBox"_s).count(), 3);
    printer.current = {};
    data.LoadPrintProfile(u"Foto"_s);
    EXPECT_EQ(printer.current, *printer.setupChoice);
}

TEST_F(PrintDialogs, NothingIsMadeWithoutSetupOrNameOrUnderAKnownName) {
    const QStringList before = QDir(data.DataFolder()).entryList();
    InProfiles([this](QWidget& shown) {
        Click(shown, u"btnNewProfile"_s);
        printer.setupChoice = printer.current;
        for (const auto& name :
             {std::optional<QString>(), std::optional(u""_s), std::optional(u"  "_s),
              std::optional(u"A"_s), std::optional(u"b "_s)}) {
            ExpectName(name);
            Click(shown, u"btnNewProfile"_s);
        }
        EXPECT_EQ(printer.setupsShown, 6);
        EXPECT_EQ(Texts(shown), (QStringList{u"A"_s, u"B"_s}));
    });
    EXPECT_EQ(QDir(data.DataFolder()).entryList(), before);
}

TEST_F(PrintDialogs, AFailureIsShownAndAddsNoEntry) {
    printer.setupChoice = printer.current;
    InProfiles([this](QWidget& shown) {
        ExpectName(u"Glanz [10x15]"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Click(shown, u"btnNewProfile"_s);
        printer.failure = u"Der Druckdienst antwortet nicht."_s;
        ExpectMessage(printer.failure);
        Click(shown, u"btnNewProfile"_s);
        printer.failure.clear();
        QDir(data.DataFolder()).removeRecursively();
        ExpectName(u"Foto"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Click(shown, u"btnNewProfile"_s);
        EXPECT_EQ(Texts(shown), (QStringList{u"A"_s, u"B"_s}));
    });
}

TEST_F(PrintDialogs, DeletingAnyProfileResetsThePrintDefaults) {
    PrintAtOnce(0);
    InProfiles([this](QWidget& shown) {
        EXPECT_FALSE(shown.findChild<QPushButton*>(u"btnDelProfile"_s)->isEnabled());
        shown.findChild<QListWidget*>(u"lbProfiles"_s)->setCurrentRow(1);
        ExpectMessage(u"Druck Profil löschen?"_s, u"NoButton"_s);
        Click(shown, u"btnDelProfile"_s);
        EXPECT_EQ(Texts(shown).size(), 2);
        EXPECT_TRUE(settings.PrintAfterCrop());

        ExpectMessage(u"Druck Profil löschen?"_s, u"YesButton"_s);
        ExpectMessage(
            u"Das Profil wurde gelöscht und die Einstellungen zurückgesetzt.\r\n"
            u"Wechseln Sie zu den Einstellungen und konfigurieren die Druckausgabe erneut!"_s);
        Click(shown, u"btnDelProfile"_s);
        EXPECT_EQ(Texts(shown), QStringList(u"A"_s));
    });
    EXPECT_EQ(data.GetPrinterProfileList(), QStringList(u"A"_s));
    EXPECT_EQ(settings.PrintProfileBox(), -1);
    EXPECT_FALSE(settings.PrintAfterCrop());
    const core::StoredSettings stored(data.ProfileFile(u"Standard Profile"_s));
    EXPECT_EQ(stored.PrintProfileBox(), -1);
    EXPECT_FALSE(stored.PrintAfterCrop());
}

TEST_F(PrintDialogs, AnEntryThatCannotBeDeletedStays) {
    PrintAtOnce(0);
    QFile index(installation.DataFile("Printerprofiles42.ini"));
    ASSERT_TRUE(index.setPermissions(QFile::ReadOwner));
    InProfiles([this](QWidget& shown) {
        shown.findChild<QListWidget*>(u"lbProfiles"_s)->setCurrentRow(0);
        driver.Press(u"MessageBox"_s, u"YesButton"_s).Press(u"MessageBox"_s, u"OkButton"_s);
        Click(shown, u"btnDelProfile"_s);
        EXPECT_EQ(Texts(shown).size(), 2);
    });
    EXPECT_TRUE(settings.PrintAfterCrop()) << "what was not deleted resets nothing";
}

TEST_F(PrintDialogs, EveryButtonGivesItsResultAndAPrintProfileNeedsASelection) {
    driver.Expect(u"BeforPrintDlgFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle(), u"Print Profiles"_s);
        EXPECT_EQ(Texts(shown), (QStringList{u"A"_s, u"B"_s}));
        auto* list = shown.findChild<QListWidget*>(u"lbProfiles"_s);
        EXPECT_EQ(shown.focusWidget(), list);
        QTest::qWait(60);
        EXPECT_TRUE(shown.isVisible()) << "no timer without immediate printing";
        ExpectMessage(u"Please select a Profile"_s);
        Click(shown, u"btnProfile"_s);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Down);
        Click(shown, u"btnProfile"_s);
    });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Yes);
    EXPECT_EQ(beforePrint.SelectedProfile(), u"B"_s);

    data.SavePrintProfile(u"C"_s);
    driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) {
        EXPECT_EQ(Texts(shown).last(), u"C"_s);
        Click(shown, u"btnNoProfile"_s);
    });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::No);
    driver.Press(u"BeforPrintDlgFm"_s, u"btnCancel"_s);
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
    driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) { shown.close(); });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
}

TEST_F(PrintDialogs, ImmediatePrintingConfirmsItselfWithTheDefaultProfile) {
    EXPECT_EQ(dialogs::TBeforPrintDlgFm(data, settings).findChild<QTimer*>(u"Timer"_s)->interval(),
              500);
    PrintAtOnce(1);
    driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget&) {});
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Yes);
    EXPECT_EQ(beforePrint.SelectedProfile(), u"B"_s);

    driver.Press(u"BeforPrintDlgFm"_s, u"btnCancel"_s);
    beforePrint.findChild<QTimer*>(u"Timer"_s)->setInterval(10000);
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
    EXPECT_FALSE(beforePrint.findChild<QTimer*>(u"Timer"_s)->isActive());
}

TEST_F(PrintDialogs, ImmediatePrintingWaitsForTheUserWithoutADefaultProfile) {
    for (const int missing : {-1, 1}) {
        PrintAtOnce(missing);
        data.DeletePrinterProfile(u"B"_s);
        driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) {
            QTest::qWait(60);
            EXPECT_TRUE(shown.isVisible());
            ASSERT_TRUE(shown.findChild<QListWidget*>(u"lbProfiles"_s)->selectedItems().isEmpty());
            Click(shown, u"btnCancel"_s);
        });
        EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
    }
}

}  // namespace kadrona::testing
