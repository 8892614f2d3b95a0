#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>

#include "core/settings/ProfileRecord.h"
#include "dialogs/SettingsDialog.h"
#include "platform/UserRegistry.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class SettingsDialog : public ::testing::Test {
 protected:
    SettingsDialog() { Start(); }

    /// A fresh run of the program over what the last one left.
    void Start() {
        dialog.reset();
        data = std::make_unique<core::TData>(ui, installation.Folders());
        dialog = std::make_unique<dialogs::TEinstellungenFm>(*data);
        dialog->SetImageCountHandler([this](int index) { imageCounts.append(index); });
        data->SetSettings(dialog.get());
        data->SetInitHandler([this](core::TData&) { dialog->InitPropertys(); });
        data->InitSystem();
    }

    template <typename Control>
    Control* The(const QString& name) {
        auto* control = dialog->findChild<Control*>(name);
        EXPECT_NE(control, nullptr) << name.toStdString();
        return control;
    }

    QStringList Profiles() {
        QStringList names;
        for (int row = 0; row < The<QListWidget>(u"ProfileListBox"_s)->count(); ++row) {
            names.append(The<QListWidget>(u"ProfileListBox"_s)->item(row)->text());
        }
        return names;
    }

    /// What a user does in the shown dialog; then the dialog is closed with Escape.
    void InDialog(const std::function<void()>& steps) {
        driver.Expect(u"EinstellungenFm"_s, [this, steps](QWidget& shown) {
            steps();
            QTest::keyClick(&shown, Qt::Key_Escape);
        });
        dialog->ShowEx();
    }

    void AddProfile(const QString& name) {
        InDialog([&] {
            ExpectLine(name);
            The<QPushButton>(u"btnNew"_s)->click();
        });
    }

    void ExpectLine(const QString& answer) {
        driver.Expect(u"LineDialog"_s, [answer](QWidget& shown) {
            EXPECT_EQ(shown.windowTitle(), u"New Profile"_s);
            shown.findChild<QLineEdit*>(u"LineEdit"_s)->setText(answer);
            shown.findChild<QPushButton*>(u"OkButton"_s)->click();
        });
    }

    Installation installation;
    FakeInterface ui;
    ModalDriver driver;
    QList<int> imageCounts;
    std::unique_ptr<core::TData> data;
    std::unique_ptr<dialogs::TEinstellungenFm> dialog;
};

TEST_F(SettingsDialog, AFirstStartMakesTheStandardProfileWithTheDesignValues) {
    EXPECT_EQ(Profiles(), QStringList(u"Standard Profile"_s));
    EXPECT_EQ(data->GetProfileList(), QStringList(u"Standard Profile"_s));
    EXPECT_EQ(dialog->FrameSize(), u"25"_s);
    EXPECT_EQ(dialog->FileNameEd(), u"Bildname"_s);
    EXPECT_TRUE(dialog->ImgAutoRotate());
    EXPECT_EQ(dialog->SchabloneBox(), -1);
    EXPECT_EQ(The<QComboBox>(u"SchabloneBox"_s)->count(), 2);
    EXPECT_FALSE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
}

TEST_F(SettingsDialog, EveryStoredControlSurvivesARestart) {
    InDialog([&] {
        for (const core::ProfileEntry& entry : core::ProfileRecord) {
            auto* control = The<QWidget>(entry.control);
            if (auto* box = qobject_cast<QCheckBox*>(control)) {
                box->setChecked(true);
            } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
                combo->setCurrentIndex(combo->count() - 1);
            } else if (auto* edit = qobject_cast<QLineEdit*>(control)) {
                edit->setText(u"  7"_s);
            }
        }
        The<QLineEdit>(u"FrameSize"_s)->setText(u"7"_s);
        The<QRadioButton>(u"ImgRotateLeft"_s)->setChecked(true);
        The<QLineEdit>(u"ImageDestinationDir"_s)->setText(u"/archiv"_s);
    });
    EXPECT_EQ(data->FrameSize(), 7);
    Start();
    EXPECT_EQ(data->FrameSize(), 7);
    EXPECT_EQ(dialog->FileNameEd(), u"  7"_s);
    EXPECT_EQ(dialog->ImageSaveDir(), u"  7"_s);
    EXPECT_EQ(dialog->FileTypCombo(), 1);
    EXPECT_EQ(dialog->FileVarCombo(), 5);
    EXPECT_EQ(dialog->ImageCount(), 7);
    EXPECT_EQ(dialog->SchabloneBox(), 1);
    EXPECT_TRUE(dialog->ImgRotateLeft());
    EXPECT_FALSE(dialog->ImgAutoRotate());
    EXPECT_EQ(dialog->ImageDestinationDir(), u"/archiv"_s);
    for (const core::ProfileEntry& entry : core::ProfileRecord) {
        if (auto* box = dialog->findChild<QCheckBox*>(entry.control)) {
            EXPECT_TRUE(box->isChecked()) << box->objectName().toStdString();
        }
    }
}

TEST_F(SettingsDialog, ANewProfileIsACopyAndBothKeepTheirOwnValues) {
    InDialog([&] { The<QLineEdit>(u"FrameSize"_s)->setText(u"30"_s); });
    InDialog([&] {
        ExpectLine(u"Laden Straße"_s);
        The<QPushButton>(u"btnNew"_s)->click();
        EXPECT_EQ(Profiles().last(), u"LADEN STRAßE"_s);
        EXPECT_EQ(dialog->FrameSize(), u"30"_s);
        EXPECT_TRUE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
        The<QLineEdit>(u"FrameSize"_s)->setText(u"40"_s);
        The<QListWidget>(u"ProfileListBox"_s)->setCurrentRow(0);
        EXPECT_EQ(dialog->FrameSize(), u"30"_s);
        The<QListWidget>(u"ProfileListBox"_s)->setCurrentRow(1);
        EXPECT_EQ(dialog->FrameSize(), u"40"_s) << "the switch stored it";
    });
    EXPECT_EQ(data->GetProfileList(), (QStringList{u"Standard Profile"_s, u"Laden Straße"_s}));
    Start();
    EXPECT_EQ(dialog->FrameSize(), u"30"_s) << "every run starts with the standard profile";
    dialog->AktivateProfileByName(u"laden straße"_s, false);
    EXPECT_EQ(data->FrameSize(), 40);
}

TEST_F(SettingsDialog, ANameMustBeUniqueExceptThatOfTheFirstEntry) {
    AddProfile(u"Laden"_s);
    InDialog([&] {
        ExpectLine(u"laden"_s);
        driver.Answer(u"Wählen Sie bitte einen eindeutigen Namen aus"_s);
        ExpectLine(u"standard profile"_s);
        The<QPushButton>(u"btnNew"_s)->click();
    });
    EXPECT_EQ(Profiles().size(), 3);
    EXPECT_EQ(data->GetProfileList().size(), 2) << "the first profile only got a new file";
}

TEST_F(SettingsDialog, DeletingShowsTheFirstProfilesStoredValues) {
    InDialog([&] { The<QLineEdit>(u"FrameSize"_s)->setText(u"30"_s); });
    AddProfile(u"B"_s);
    InDialog([&] {
        The<QLineEdit>(u"FrameSize"_s)->setText(u"99"_s);
        driver.Press(u"MessageBox"_s, u"NoButton"_s);
        The<QPushButton>(u"btnDelete"_s)->click();
        EXPECT_EQ(Profiles().size(), 2);
        driver.Press(u"MessageBox"_s, u"YesButton"_s);
        The<QPushButton>(u"btnDelete"_s)->click();
        EXPECT_EQ(Profiles().size(), 1);
        EXPECT_EQ(dialog->FrameSize(), u"30"_s);
        EXPECT_FALSE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
    });
    EXPECT_EQ(data->GetProfileList(), QStringList(u"Standard Profile"_s));
    EXPECT_EQ(QDir(data->DataFolder()).entryList({u"*.tmp"_s}, QDir::Files).size(), 1);
}

TEST_F(SettingsDialog, ANameThatCannotBeKeptLeavesTheActiveProfileActive) {
    InDialog([&] {
        ExpectLine(QString());
        driver.Answer(u"Can not save this profile settings!"_s);
        The<QPushButton>(u"btnNew"_s)->click();
        The<QLineEdit>(u"FrameSize"_s)->setText(u"99"_s);
    });
    Start();
    EXPECT_EQ(dialog->FrameSize(), u"99"_s);
    EXPECT_EQ(QDir(data->DataFolder()).entryList({u"*.tmp"_s}, QDir::Files).size(), 1);
}

TEST_F(SettingsDialog, TickingTheAutomaticSavingsChecksWhatTheyNeed) {
    InDialog([&] {
        auto* archive = The<QCheckBox>(u"ImageAutoSave"_s);
        driver.Answer(u"Bitte geben Sie ein Verzeichnis an!"_s);
        archive->click();
        EXPECT_TRUE(archive->isChecked()) << "it only warns";
        archive->click();
        The<QLineEdit>(u"ImageDestinationDir"_s)->setText(installation.Path("none"));
        driver.Answer(u"Das Verzeichnis ist ungültig!"_s);
        archive->click();

        auto* save = The<QCheckBox>(u"ImageAutoSave2"_s);
        const auto tick = [&](const QString& message) {
            save->setChecked(false);
            driver.Answer(message);
            save->click();
        };
        tick(u"Bitte geben Sie ein Verzeichnis an!"_s);
        The<QLineEdit>(u"ImageSaveDir"_s)->setText(installation.Path("none"));
        tick(u"Das Verzeichnis ist ungültig!"_s);
        The<QLineEdit>(u"ImageSaveDir"_s)->setText(installation.Path("program"));
        tick(u"Die Bildanzahl muss 1x1 betragen!"_s);
        The<QComboBox>(u"ImageCount"_s)->setCurrentIndex(6);
        The<QLineEdit>(u"FileNameEd"_s)->clear();
        tick(u"Geben Sie einen Dateinamen an!"_s);
        The<QLineEdit>(u"FileNameEd"_s)->setText(u"x"_s);
        save->setChecked(false);
        save->click();
    });
}

TEST_F(SettingsDialog, ThePictureCountFollowsAtOnceAndOnActivation) {
    imageCounts.clear();
    InDialog([&] {
        The<QComboBox>(u"ImageCount"_s)->setCurrentIndex(3);
        EXPECT_EQ(imageCounts.last(), 3);
    });
    imageCounts.clear();
    dialog->AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(imageCounts, QList<int>{3});
}

TEST_F(SettingsDialog, ThePipetteStaysOffWhileTheWhiteBalanceIsAutomatic) {
    The<QCheckBox>(u"WhiteBalancePipette"_s)->setChecked(true);
    The<QCheckBox>(u"AutoWhiteBalance"_s)->setChecked(true);
    The<QCheckBox>(u"WhiteBalancePipette"_s)->click();
    EXPECT_TRUE(dialog->WhiteBalancePipette());
    The<QCheckBox>(u"AutoWhiteBalance"_s)->setChecked(false);
    The<QCheckBox>(u"WhiteBalancePipette"_s)->click();
    EXPECT_FALSE(dialog->WhiteBalancePipette());
}

TEST_F(SettingsDialog, AnEmptyFrameSizeIsAnErrorAndKeepsTheOldOne) {
    driver.Expect(u"EinstellungenFm"_s, [this](QWidget& shown) {
        The<QLineEdit>(u"FrameSize"_s)->clear();
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_THROW(dialog->ShowEx(), platform::Error);
    EXPECT_EQ(data->FrameSize(), 25);
}

TEST_F(SettingsDialog, ShowingActivatesTheProfileSelectedInItsOwnList) {
    InDialog([] {});
    AddProfile(u"B"_s);
    InDialog([&] { The<QLineEdit>(u"FrameSize"_s)->setText(u"44"_s); });
    dialog->AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(data->FrameSize(), 25);
    InDialog([&] { EXPECT_EQ(dialog->FrameSize(), u"44"_s); });
    EXPECT_EQ(data->FrameSize(), 44);
}

TEST_F(SettingsDialog, TheDefaultPrinterIsKeptByItsPlaceInAFreshList) {
    const auto printers = [&](const char* index) {
        installation.Write("common/Kadrona/Printerprofiles42.ini", index);
    };
    auto* box = The<QComboBox>(u"PrintProfileBox"_s);
    printers("[A]\nProfile=prn1.tmp\n[B]\nProfile=prn2.tmp\n");
    InDialog([&] { box->setCurrentIndex(1); });
    printers("[C]\nProfile=prn1.tmp\n[D]\nProfile=prn2.tmp\n[E]\nProfile=prn3.tmp\n");
    InDialog([&] {
        EXPECT_EQ(box->count(), 3);
        EXPECT_EQ(box->currentText(), u"D"_s);
    });
    printers("[C]\nProfile=prn1.tmp\n");
    InDialog([&] { EXPECT_EQ(dialog->PrintProfileBox(), -1); });
}

TEST_F(SettingsDialog, AReadOnlyProfileFileIsReportedAndTheProgramGoesOn) {
    QFile file(data->ProfileFile(u"Standard Profile"_s));
    InDialog([] {});
    ASSERT_TRUE(file.setPermissions(QFile::ReadOwner));
    driver.Expect(u"EinstellungenFm"_s, [this](QWidget& shown) {
        The<QLineEdit>(u"FrameSize"_s)->setText(u"31"_s);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    driver.Press(u"MessageBox"_s, u"OkButton"_s);
    dialog->ShowEx();
    EXPECT_EQ(data->FrameSize(), 31);
}

}  // namespace kadrona::testing
