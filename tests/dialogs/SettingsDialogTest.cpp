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
#include "core/settings/StoredSettings.h"
#include "dialogs/SettingsDialog.h"
#include "platform/UserRegistry.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Errors.h"
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
        return &Child<Control>(*dialog, name);
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

    void Select(int row) { The<QListWidget>(u"ProfileListBox"_s)->setCurrentRow(row); }

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
    const QStringList boxes{u"AutoWhiteBalance"_s,    u"ImageAutoSave"_s,       u"ImageAutoSave2"_s,
                            u"PrintAfterCrop"_s,      u"RotateBeforeTileImg"_s, u"ScaleImageCk"_s,
                            u"ShowBlackWhite"_s,      u"ShowGradation"_s,       u"ShowRotate"_s,
                            u"WhiteBalancePipette"_s, u"ImgRotateLeft"_s};
    const QStringList choices{u"FileTypCombo"_s, u"FileVarCombo"_s, u"ImageCount"_s,
                              u"SchabloneBox"_s, u"PrintProfileBox"_s};
    const QStringList fields{u"FileNameEd"_s, u"ImageSaveDir"_s, u"FrameSize"_s,
                             u"ImageDestinationDir"_s};
    installation.Write("common/Kadrona/Printerprofiles42.ini", "[A]\nProfile=prn1.tmp\n");
    InDialog([&] {
        for (const QString& box : boxes) {
            The<QAbstractButton>(box)->setChecked(true);
        }
        for (const QString& choice : choices) {
            The<QComboBox>(choice)->setCurrentIndex(The<QComboBox>(choice)->count() - 1);
        }
        for (const QString& field : fields) {
            The<QLineEdit>(field)->setText(field == u"FrameSize" ? u"7"_s : u"  "_s + field);
        }
    });
    EXPECT_EQ(data->FrameSize(), 7);
    Start();
    EXPECT_EQ(data->FrameSize(), 7);
    for (const QString& box : boxes) {
        EXPECT_TRUE(The<QAbstractButton>(box)->isChecked()) << box.toStdString();
    }
    for (const QString& choice : choices) {
        EXPECT_EQ(The<QComboBox>(choice)->currentIndex(), The<QComboBox>(choice)->count() - 1)
            << choice.toStdString();
    }
    for (const QString& field : fields) {
        EXPECT_EQ(The<QLineEdit>(field)->text(), field == u"FrameSize" ? u"7"_s : u"  "_s + field);
    }
    EXPECT_FALSE(dialog->ImgAutoRotate());
}

TEST_F(SettingsDialog, ANewProfileIsACopyAndBothKeepTheirOwnValues) {
    auto* frame = The<QLineEdit>(u"FrameSize"_s);
    InDialog([&] {
        // The standard profile was never stored: its values are the design's.
        ExpectLine(u" Laden Straße "_s);
        The<QPushButton>(u"btnNew"_s)->click();
        EXPECT_EQ(Profiles().last(), u"LADEN STRAßE"_s);
        EXPECT_EQ(dialog->FrameSize(), u"25"_s);
        EXPECT_TRUE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
        frame->setText(u"40"_s);
        The<QComboBox>(u"AlignToFace"_s)->setCurrentIndex(2);
        Select(0);
        EXPECT_EQ(dialog->FrameSize(), u"25"_s) << "not the values of the new one";
        EXPECT_EQ(dialog->AlignToFace(), core::FaceAlignment::Propose);
        Select(1);
        EXPECT_EQ(dialog->FrameSize(), u"40"_s) << "the switch stored it";
        EXPECT_EQ(dialog->AlignToFace(), core::FaceAlignment::Always);
    });
    EXPECT_EQ(data->GetProfileList(), (QStringList{u"Standard Profile"_s, u"Laden Straße"_s}));
    dialog->AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(data->FrameSize(), 25);
    InDialog([&] { EXPECT_EQ(dialog->FrameSize(), u"40"_s) << "as its own list says"; });
    EXPECT_EQ(data->FrameSize(), 40);
    Start();
    EXPECT_EQ(dialog->FrameSize(), u"25"_s) << "every run starts with the standard profile";
    dialog->AktivateProfileByName(u"laden straße"_s, false);
    EXPECT_EQ(data->FrameSize(), 40);
    EXPECT_EQ(dialog->AlignToFace(), core::FaceAlignment::Always);
    EXPECT_EQ(core::StoredSettings(data->ProfileFile(u"laden straße"_s)).AlignToFace(),
              core::FaceAlignment::Always);

    InDialog([&] {
        Select(1);
        driver.Press(u"MessageBox"_s, u"NoButton"_s);
        The<QPushButton>(u"btnDelete"_s)->click();
        EXPECT_EQ(Profiles().size(), 2);
        driver.Press(u"MessageBox"_s, u"YesButton"_s);
        The<QPushButton>(u"btnDelete"_s)->click();
        EXPECT_EQ(Profiles().size(), 1);
        EXPECT_EQ(dialog->FrameSize(), u"25"_s);
        EXPECT_FALSE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
    });
    EXPECT_EQ(data->GetProfileList(), QStringList(u"Standard Profile"_s));
    const QDir left(data->DataFolder());
    EXPECT_EQ(left.entryList({u"*.tmp"_s}, QDir::Files).size(), 1);
    EXPECT_EQ(left.entryList({u"*.additions"_s}, QDir::Files).size(), 1);
}

TEST_F(SettingsDialog, ASwitchThatFailsLeavesListAndBindingAsTheyWere) {
    AddProfile(u"B"_s);
    QFile b(data->ProfileFile(u"B"_s));
    ASSERT_TRUE(b.setPermissions(QFile::ReadOwner));
    InDialog([&] {
        The<QLineEdit>(u"FrameSize"_s)->setText(u"66"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Select(0);
        EXPECT_EQ(The<QListWidget>(u"ProfileListBox"_s)->currentRow(), 1);
        ASSERT_TRUE(b.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
        Select(0);
        // Larger than any settings file: it cannot be read.
        ASSERT_TRUE(b.resize(17 << 20));
        The<QLineEdit>(u"FrameSize"_s)->setText(u"77"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Select(1);
        EXPECT_EQ(The<QListWidget>(u"ProfileListBox"_s)->currentRow(), 0);
    });
    EXPECT_EQ(b.size(), 17 << 20);
    Start();
    EXPECT_EQ(dialog->FrameSize(), u"77"_s) << "stored as the profile that is shown";
}

TEST_F(SettingsDialog, ANameMustBeFitAndUniqueExceptThatOfTheFirstEntry) {
    AddProfile(u"Laden"_s);
    InDialog([&] {
        const QString taken = u"Wählen Sie bitte einen eindeutigen Namen aus"_s;
        for (const auto& [name, answer] :
             {std::pair(u"laden"_s, taken), std::pair(u" LADEN "_s, taken),
              std::pair(u"a]b"_s, u"Steuerzeichen"_s),
              std::pair(u"a\u202eb"_s, u"Steuerzeichen"_s)}) {
            ExpectLine(name);
            driver.Answer(answer);
        }
        ExpectLine(u"standard profile "_s);
        The<QPushButton>(u"btnNew"_s)->click();
    });
    EXPECT_EQ(Profiles().size(), 3);
    EXPECT_EQ(data->GetProfileList().size(), 2) << "the first profile only got a new file";
    AddProfile(u"ı-ſ"_s);
    AddProfile(u"I-S"_s);
    const QStringList both{u"ı-ſ"_s, u"I-S"_s};
    EXPECT_EQ(Profiles().last(2), both) << "whose upper case is the other name";
    EXPECT_EQ(data->GetProfileList().last(2), both);
    EXPECT_NE(data->ProfileFile(both[0]), data->ProfileFile(both[1]));
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

TEST_F(SettingsDialog, TheListsAreThoseOfTodayAndAChoiceIsItsText) {
    const auto printers = [&](const char* index) {
        installation.Write("common/Kadrona/Printerprofiles42.ini", index);
    };
    auto* printer = The<QComboBox>(u"PrintProfileBox"_s);
    printers("[A]\nProfile=prn1.tmp\n[B]\nProfile=prn2.tmp\n");
    InDialog([&] {
        printer->setCurrentIndex(1);
        The<QComboBox>(u"SchabloneBox"_s)->setCurrentIndex(1);
    });
    printers("[C]\nProfile=prn1.tmp\n[D]\nProfile=prn2.tmp\n[B]\nProfile=prn3.tmp\n");
    installation.Write("program/Schablonen/MaskList.kdr", "USA=USA.msk\nNeu=Pass.msk\nX=X.msk\n");
    Start();
    printer = The<QComboBox>(u"PrintProfileBox"_s);
    EXPECT_EQ(dialog->SchabloneBoxText(), u"USA"_s);
    InDialog([&] {
        EXPECT_EQ(printer->count(), 3);
        EXPECT_EQ(printer->currentIndex(), 2);
        EXPECT_EQ(The<QComboBox>(u"SchabloneBox"_s)->count(), 3);
        EXPECT_EQ(dialog->SchabloneBox(), 0);
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
