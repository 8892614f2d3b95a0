#include <QMetaProperty>

#include "core/archive/ArchiveServer.h"
#include "core/settings/AdditionsFile.h"
#include "core/settings/StoredSettings.h"
#include "dialogs/settings/SettingsDialog.h"
#include "platform/UserRegistry.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Windows.h"

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

    QString Profiles() { return Items(*The<QListWidget>(u"ProfileListBox"_s)); }
    void SetFrame(const QString& text) { The<QLineEdit>(u"FrameSize"_s)->setText(text); }
    QStringList ProfileFiles(const char* pattern = "*.tmp") const {
        return QDir(data->DataFolder()).entryList({QLatin1StringView(pattern)}, QDir::Files);
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
            ClickButton(*dialog, "btnNew");
        });
    }

    void ExpectLine(const QString& answer) { driver.Enter(u"LineDialog"_s, u"LineEdit"_s, answer); }

    Installation installation;
    FakeInterface ui;
    ModalDriver driver;
    QList<int> imageCounts;
    std::unique_ptr<core::TData> data;
    std::unique_ptr<dialogs::TEinstellungenFm> dialog;
};

TEST_F(SettingsDialog, AFirstStartMakesTheStandardProfileWithTheDesignValues) {
    EXPECT_EQ(Profiles(), u"Standard Profile"_s);
    EXPECT_EQ(data->GetProfileList(), QStringList(u"Standard Profile"_s));
    EXPECT_EQ(dialog->FrameSize(), u"25"_s);
    EXPECT_EQ(dialog->FileNameEd(), u"Bildname"_s);
    EXPECT_TRUE(dialog->ImgAutoRotate());
    EXPECT_EQ(dialog->SchabloneBox(), -1);
    EXPECT_EQ(The<QComboBox>(u"SchabloneBox"_s)->count(), 2);
    EXPECT_FALSE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
}

TEST_F(SettingsDialog, EveryStoredControlSurvivesARestart) {
    QStringList names =
        u"AutoWhiteBalance ImageAutoSave ImageAutoSave2 PrintAfterCrop RotateBeforeTileImg "
        "ScaleImageCk ShowBlackWhite ShowGradation ShowRotate WhiteBalancePipette ImgRotateLeft "
        "FileTypCombo FileVarCombo ImageCount SchabloneBox PrintProfileBox "
        "FileNameEd ImageSaveDir ImageDestinationDir FrameSize"_s.split(u' ');
    for (const core::ProfileEntry& addition : core::ProfileAdditions) {
        names.append(QLatin1StringView(addition.control));
    }
    installation.Write("common/Kadrona/Printerprofiles42.ini", "[A]\nProfile=prn1.tmp\n");
    const auto value = [this](const QString& name) {
        const auto* control = The<QWidget>(name);
        return control->metaObject()->userProperty().read(control);
    };
    QVariantList before;
    InDialog([&] {
        for (const QString& name : names) {
            const QVariant design = value(name);
            if (auto* box = dialog->findChild<QComboBox*>(name)) {
                box->setCurrentIndex(box->count() - 1);
            } else if (auto* button = dialog->findChild<QAbstractButton*>(name)) {
                button->setChecked(!button->isChecked());
            } else if (auto* number = dialog->findChild<QDoubleSpinBox*>(name)) {
                number->setValue(number->maximum());
            } else {
                The<QLineEdit>(name)->setText(name == u"FrameSize" ? u"7"_s : u"  "_s + name);
            }
            before.append(value(name));
            EXPECT_NE(before.last(), design) << name.toStdString();
        }
    });
    EXPECT_EQ(data->FrameSize(), 7);
    Start();
    EXPECT_EQ(data->FrameSize(), 7);
    for (const QString& name : names) {
        EXPECT_EQ(value(name), before.takeFirst()) << name.toStdString();
    }
    EXPECT_FALSE(dialog->ImgAutoRotate());
}

TEST_F(SettingsDialog, ANewProfileIsACopyAndBothKeepTheirOwnValues) {
    InDialog([&] {
        // The standard profile was never stored: its values are the design's.
        ExpectLine(u" Laden Straße "_s);
        ClickButton(*dialog, "btnNew");
        EXPECT_EQ(Profiles(), u"Standard Profile|LADEN STRAßE"_s);
        EXPECT_EQ(dialog->FrameSize(), u"25"_s);
        EXPECT_TRUE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
        SetFrame(u"40"_s);
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
    ASSERT_TRUE(QFile::remove(core::AdditionsFile(data->ProfileFile(u"Standard Profile"_s))));
    dialog->AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(dialog->AlignToFace(), core::FaceAlignment::Propose) << "nothing is stored";

    InDialog([&] {
        Select(1);
        driver.Press(u"MessageBox"_s, u"NoButton"_s);
        ClickButton(*dialog, "btnDelete");
        EXPECT_EQ(Profiles().count(u'|'), 1);
        driver.Press(u"MessageBox"_s, u"YesButton"_s);
        ClickButton(*dialog, "btnDelete");
        EXPECT_EQ(Profiles(), u"Standard Profile"_s);
        EXPECT_EQ(dialog->FrameSize(), u"25"_s);
        EXPECT_FALSE(The<QPushButton>(u"btnDelete"_s)->isEnabled());
    });
    EXPECT_EQ(data->GetProfileList(), QStringList(u"Standard Profile"_s));
    EXPECT_EQ(ProfileFiles().size(), 1);
    EXPECT_EQ(ProfileFiles("*.additions").size(), 1);
}

TEST_F(SettingsDialog, ASwitchThatFailsLeavesListAndBindingAsTheyWere) {
    AddProfile(u"B"_s);
    QFile b(data->ProfileFile(u"B"_s));
    ASSERT_TRUE(b.setPermissions(QFile::ReadOwner));
    InDialog([&] {
        const auto& list = *The<QListWidget>(u"ProfileListBox"_s);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {9, list.viewport()->height() - 9});
        EXPECT_EQ(list.selectedItems().size(), 1) << "a click below the rows";
        SetFrame(u"66"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Select(0);
        EXPECT_EQ(The<QListWidget>(u"ProfileListBox"_s)->currentRow(), 1);
        ASSERT_TRUE(b.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
        Select(0);
        // Larger than any settings file: it cannot be read.
        ASSERT_TRUE(b.resize(17 << 20));
        SetFrame(u"77"_s);
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
              std::pair(u"standard profile "_s, taken), std::pair(u"a]b"_s, u"Steuerzeichen"_s),
              std::pair(u"a\u202eb"_s, u"Steuerzeichen"_s)}) {
            ExpectLine(name);
            driver.Answer(answer);
        }
        ExpectLine(u"standard profile"_s);
        ClickButton(*dialog, "btnNew");
    });
    EXPECT_EQ(Profiles().count(u'|'), 2);
    EXPECT_EQ(data->GetProfileList().size(), 2) << "the first profile only got a new file";
    AddProfile(u"ı-ſ"_s);
    AddProfile(u"I-S"_s);
    EXPECT_TRUE(Profiles().endsWith(u"|ı-ſ|I-S"_s)) << "whose upper case is the other name";
    EXPECT_EQ(data->GetProfileList().join(u'|'), u"Standard Profile|Laden|ı-ſ|I-S"_s);
    EXPECT_NE(data->ProfileFile(u"ı-ſ"_s), data->ProfileFile(u"I-S"_s));
}

TEST_F(SettingsDialog, ANameThatCannotBeKeptLeavesTheActiveProfileActive) {
    InDialog([&] {
        ExpectLine(QString());
        driver.Answer(u"Can not save this profile settings!"_s);
        ClickButton(*dialog, "btnNew");
        SetFrame(u"99"_s);
    });
    Start();
    EXPECT_EQ(dialog->FrameSize(), u"99"_s);
    EXPECT_EQ(ProfileFiles().size(), 1);
}

TEST_F(SettingsDialog, TickingTheAutomaticSavingsChecksWhatTheyNeed) {
    InDialog([&] {
        const auto tick = [&](const QString& box, const QString& message) {
            The<QCheckBox>(box)->setChecked(false);
            driver.Answer(message);
            The<QCheckBox>(box)->click();
            EXPECT_TRUE(The<QCheckBox>(box)->isChecked()) << "it only warns";
        };
        for (const auto& [box, field] : {std::pair(u"ImageAutoSave"_s, u"ImageDestinationDir"_s),
                                         std::pair(u"ImageAutoSave2"_s, u"ImageSaveDir"_s)}) {
            tick(box, u"Bitte geben Sie ein Verzeichnis an!"_s);
            The<QLineEdit>(field)->setText(installation.Path("none"));
            tick(box, u"Das Verzeichnis ist ungültig!"_s);
            The<QLineEdit>(field)->setText(installation.Path("program"));
        }
        tick(u"ImageAutoSave2"_s, u"Die Bildanzahl muss 1x1 betragen!"_s);
        The<QComboBox>(u"ImageCount"_s)->setCurrentIndex(6);
        The<QLineEdit>(u"FileNameEd"_s)->clear();
        tick(u"ImageAutoSave2"_s, u"Geben Sie einen Dateinamen an!"_s);
        The<QLineEdit>(u"FileNameEd"_s)->setText(u"x"_s);
        for (const QString& box : {u"ImageAutoSave"_s, u"ImageAutoSave2"_s}) {
            The<QCheckBox>(box)->setChecked(false);
            The<QCheckBox>(box)->click();
        }
        const QString made = installation.Path("new/folder");
        The<QLineEdit>(u"ImageSaveDir"_s)->setText(made);
        auto* missing = The<QWidget>(u"ImageSaveDirMissing"_s);
        ASSERT_TRUE(QTest::qWaitFor([&] { return missing->isVisible(); }));
        The<QPushButton>(u"ImageSaveDirMissingCreate"_s)->click();
        EXPECT_TRUE(QDir(made).exists());
        EXPECT_FALSE(missing->isVisible());
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
    EXPECT_THROW(InDialog([this] { SetFrame({}); }), platform::Error);
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
    InDialog([this] {
        SetFrame(u"31"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
    });
    EXPECT_EQ(data->FrameSize(), 31);
}

TEST_F(SettingsDialog, TheArchivesServerIsTriedAndKeptForTheUser) {
    if (!core::CanUseServers()) {
        GTEST_SKIP() << "built without servers";
    }
    const auto use = [&] { The<QCheckBox>(u"ArchiveOnServer"_s)->click(); };
    InDialog([&] {
        use();
        EXPECT_FALSE(The<QPushButton>(u"btnTryServer"_s)->isEnabled()) << "where is it?";
        for (const char* field : {"ServerHost", "ServerDatabase", "ServerUser"}) {
            The<QLineEdit>(QLatin1StringView(field))->setText(u"/nirgends"_s);
        }
        ClickButton(*dialog, "btnTryServer");
        EXPECT_TRUE(The<QLabel>(u"ServerResult"_s)->text().contains(u"kein PostgreSQL-Server"_s));
    });
    EXPECT_EQ(ui.messages.size(), 1) << "closing opens it";
    Start();
    EXPECT_EQ(ui.messages.size(), 2);
    EXPECT_THROW(data->Archive(), platform::Error);
    InDialog([&] {
        EXPECT_EQ(The<QLineEdit>(u"ServerUser"_s)->text(), u"/nirgends"_s);
        use();
    });
    EXPECT_NE(data->Archive(), nullptr);
}

}  // namespace kadrona::testing
