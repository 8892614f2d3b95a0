#include <QLabel>
#include <QLayout>
#include <QWheelEvent>

#include "core/settings/StoredSettings.h"
#include "dialogs/printing/BeforePrint.h"
#include "dialogs/printing/PaperView.h"
#include "dialogs/printing/PrinterProfileDialog.h"
#include "dialogs/settings/SettingsDialog.h"
#include "platform/UserRegistry.h"
#include "printing/Calibration.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using controls::ModalResult;

/// Both dialogs over one installation with the printer profiles "A" and "B".
class PrintDialogs : public ::testing::Test {
 protected:
    PrintDialogs() {
        data.SetSettings(&settings);
        data.SetInitHandler([this](core::TData&) { settings.InitPropertys(); });
        data.SavePrintProfile(u"A"_s);
        data.SavePrintProfile(u"B"_s);
        data.InitSystem();
        profiles = std::make_unique<dialogs::TPrintProfilDlg>(data, settings);
    }

    static QString Texts(const QWidget& shown) {
        return Items(Child<QListWidget>(shown, "lbProfiles"));
    }

    /// What a user does in the profile dialog, which is then closed by its button.
    void InProfiles(const std::function<void(QWidget&)>& steps) {
        driver.Expect(u"PrintProfilDlg"_s, [steps](QWidget& shown) {
            steps(shown);
            ClickButton(shown, "btnClose");
        });
        EXPECT_EQ(profiles->ShowEx(), ModalResult::Ok);
    }

    void ExpectName(const std::optional<QString>& answer) {
        driver.Expect(u"LineDialog"_s, [answer](QWidget& shown) {
            EXPECT_EQ(shown.windowTitle(), u"New Profile"_s);
            Child<QLineEdit>(shown, "LineEdit").setText(answer.value_or(u"x"_s));
            ClickButton(shown, answer ? "OkButton" : "CancelButton");
        });
    }

    /// Default profile and immediate printing, stored.
    void PrintAtOnce(int profile) {
        Child<QComboBox>(settings, "PrintProfileBox").setCurrentIndex(profile);
        Child<QCheckBox>(settings, "PrintAfterCrop").setChecked(true);
        settings.AktivateProfileByName(u"Standard Profile"_s, true);
    }

    Installation installation;
    FakeInterface ui;
    FakePrinter printer;
    ModalDriver driver;
    core::TData data{ui, installation.Folders(), &printer};
    dialogs::TEinstellungenFm settings{data};
    std::unique_ptr<dialogs::TPrintProfilDlg> profiles;
    dialogs::TBeforPrintDlgFm beforePrint{data, settings};
};

TEST_F(PrintDialogs, ANewProfileKeepsWhatTheSetupDialogConfirmed) {
    printer.setupChoice = FakePrinter::Choice("Fotodrucker", "PageSize=A6\n");
    InProfiles([this](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle(), u"Druck Profile"_s);
        EXPECT_EQ(Texts(shown), u"A|B"_s);
        ExpectName(u" Foto "_s);
        ClickButton(shown, "btnNewProfile");
        EXPECT_EQ(Texts(shown), u"A|B|Foto"_s);
    });
    EXPECT_EQ(data.GetPrinterProfileList().last(), u"Foto"_s);
    EXPECT_EQ(Child<QComboBox>(settings, "PrintProfileBox").count(), 3);
    printer.current = {};
    data.LoadPrintProfile(u"Foto"_s);
    EXPECT_EQ(printer.current, *printer.setupChoice);
}

TEST_F(PrintDialogs, NothingIsMadeWithoutSetupOrNameUnderAKnownNameOrByAFailure) {
    const QStringList before = QDir(data.DataFolder()).entryList();
    InProfiles([&](QWidget& shown) {
        ClickButton(shown, "btnNewProfile");
        printer.setupChoice = printer.current;
        for (const auto& name :
             {std::optional<QString>(), std::optional(u""_s), std::optional(u"  "_s),
              std::optional(u"A"_s), std::optional(u"b "_s)}) {
            ExpectName(name);
            ClickButton(shown, "btnNewProfile");
        }
        EXPECT_EQ(printer.setupsShown, 6);
        EXPECT_EQ(QDir(data.DataFolder()).entryList(), before);
        ExpectName(u"Glanz [10x15]"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        ExpectName(std::nullopt);
        ClickButton(shown, "btnNewProfile");
        printer.failure = u"Der Druckdienst antwortet nicht."_s;
        driver.Answer(printer.failure);
        ClickButton(shown, "btnNewProfile");
        printer.failure.clear();
        QDir(data.DataFolder()).removeRecursively();
        ExpectName(u"Foto"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        ClickButton(shown, "btnNewProfile");
        EXPECT_EQ(Texts(shown), u"A|B"_s);
    });
}

TEST_F(PrintDialogs, DeletingAnyProfileResetsThePrintDefaults) {
    PrintAtOnce(0);
    InProfiles([this](QWidget& shown) {
        EXPECT_FALSE(Child<QPushButton>(shown, "btnDelProfile").isEnabled());
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(1);
        driver.Answer(u"Druck Profil löschen?"_s, u"NoButton"_s);
        ClickButton(shown, "btnDelProfile");
        EXPECT_EQ(Texts(shown), u"A|B"_s);
        EXPECT_TRUE(settings.PrintAfterCrop());

        driver.Answer(u"Druck Profil löschen?"_s, u"YesButton"_s);
        driver.Answer(
            u"Das Profil wurde gelöscht und die Einstellungen zurückgesetzt.\r\n"
            u"Wechseln Sie zu den Einstellungen und konfigurieren die Druckausgabe erneut!"_s);
        ClickButton(shown, "btnDelProfile");
        EXPECT_EQ(Texts(shown), u"A"_s);
    });
    EXPECT_EQ(data.GetPrinterProfileList(), QStringList(u"A"_s));
    EXPECT_EQ(settings.PrintProfileBox(), -1);
    EXPECT_FALSE(settings.PrintAfterCrop());
    const core::StoredSettings stored(data.ProfileFile(u"Standard Profile"_s));
    EXPECT_EQ(stored.PrintProfileBox(), -1);
    EXPECT_FALSE(stored.PrintAfterCrop());
}

TEST_F(PrintDialogs, AProfileIsChangedWithItsCalibrationOrKeptUnderAnotherName) {
    const printing::Calibration calibration{1.01, 1, {}};
    printing::StoreCalibration(data.DataFolder(), u"A"_s, calibration);
    const printing::PrinterChoice before = printer.current;
    InProfiles([&](QWidget& shown) {
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(0);
        const auto change = [&](const char* name, const printing::PrinterChoice& choice,
                                const QString& refused = {}) {
            printer.setupChoice = choice;
            driver.Expect(u"LineDialog"_s, [name](QWidget& asked) {
                EXPECT_EQ(Child<QLineEdit>(asked, "LineEdit").text(), u"A"_s);
                Child<QLineEdit>(asked, "LineEdit").setText(QString::fromUtf8(name));
                ClickButton(asked, "OkButton");
            });
            if (!refused.isEmpty()) {
                driver.Answer(refused, u"NoButton"_s);
            }
            ClickButton(shown, "btnChangeProfile");
        };
        change("A", FakePrinter::Choice("Laser", "PageSize=A6\n"));
        EXPECT_EQ(data.PrintProfiles().Stored(u"A"_s), printer.setupChoice);
        change("B", FakePrinter::Choice("Foto", ""), u"Das Profil „B“ gibt es schon."_s);
        EXPECT_EQ(data.PrintProfiles().Stored(u"B"_s), before);
        change("C", FakePrinter::Choice("Foto", ""));
        EXPECT_EQ(data.PrintProfiles().Stored(u"C"_s), printer.setupChoice);
    });
    EXPECT_EQ(printer.current, before);
    EXPECT_EQ(QDir(data.DataFolder()).entryList({u"prn*.tmp"_s}).size(), 3) << "files left over";
    EXPECT_EQ(printing::StoredCalibration(data.DataFolder(), u"A"_s), calibration);
    EXPECT_EQ(printing::StoredCalibration(data.DataFolder(), u"C"_s), printing::Calibration());
}

TEST_F(PrintDialogs, CalibratingKeepsWhatTheReadingsSayBesideTheProfile) {
    InProfiles([this](QWidget& shown) {
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(1);
        driver.Expect(u"CalibrationDialog"_s, [this](QWidget& dialog) {
            const auto apply = [&](const QStringList& readings) {
                int field = 0;
                for (const char* name : {"edAcross", "edAlong", "edLeft", "edTop"}) {
                    Child<QLineEdit>(dialog, QLatin1String(name)).setText(readings[field++]);
                }
                ClickButton(dialog, "btnApply");
            };
            ClickButton(dialog, "btnPrintSheet");
            const auto refuse = [&](const QString& text, const QString& field,
                                    const QStringList& readings) {
                driver.Answer(text);
                apply(readings);
                EXPECT_EQ(dialog.focusWidget()->objectName(), field);
            };
            refuse(u"Linie A fehlt oder ist keine Zahl"_s, u"edAcross"_s,
                   {u"lang"_s, u"100"_s, u"105"_s, u"148,5"_s});
            refuse(u"Linie B kann nicht stimmen"_s, u"edAlong"_s,
                   {u"100"_s, u"3000"_s, u"105"_s, u"148,5"_s});
            refuse(u"vom oberen Rand fehlt"_s, u"edTop"_s, {u"100"_s, u"100"_s, u"105"_s, u""_s});
            const QStringList readings{u"102,3"_s, u"100.0"_s, u"106,4"_s, u"148,5"_s};
            printing::StoreCalibration(data.DataFolder(), u"B"_s, {1.01, 1, {}});
            driver.Answer(u"inzwischen anderswo geändert"_s);
            apply(readings);
            printing::EraseCalibration(data.DataFolder(), u"B"_s);
            apply(readings);
            ClickButton(dialog, "btnPrintSheet");
            Q_EMIT printer.watch->Changed({printing::JobState::Stage::Held, u"Kein Papier"_s});
            EXPECT_EQ(Child<QLabel>(dialog, "lblSheet").text(), u"Kein Papier"_s);
            ClickButton(dialog, "btnClose");
        });
        ClickButton(shown, "btnCalibrate");
    });
    const printing::Calibration expected{0.978, 1, {-1.4, 0}};
    ASSERT_EQ(printer.jobs.size(), 2);
    EXPECT_EQ(printer.jobs[0].image.calibration, printing::Calibration());
    EXPECT_EQ(printer.jobs[1].image.calibration, expected) << "the second sheet confirms nothing";
    EXPECT_EQ(printing::StoredCalibration(data.DataFolder(), u"B"_s), expected);
    EXPECT_EQ(printing::StoredCalibration(data.DataFolder(), u"A"_s), printing::Calibration());
}

TEST_F(PrintDialogs, PrintingWithAProfileNeedsASelection) {
    driver.Expect(u"BeforPrintDlgFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle(), u"Print Profiles"_s);
        auto* list = shown.findChild<QListWidget*>(u"lbProfiles"_s);
        EXPECT_EQ(shown.focusWidget(), list);
        driver.Answer(u"Please select a Profile"_s);
        ClickButton(shown, "btnProfile");
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Down);
        EXPECT_EQ(beforePrint.SelectedProfile(), u"B"_s);
        QTest::mouseClick(shown.findChild<QPushButton*>(u"btnNoProfile"_s), Qt::LeftButton);
    });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::No);
    driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) {
        EXPECT_TRUE(Child<QPushButton>(shown, "btnProfile").isDefault());
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(1);
        ClickButton(shown, "btnProfile");
    });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Yes);
    dialogs::TBeforPrintDlgFm later(data, settings);
    driver.Press(u"BeforPrintDlgFm"_s, u"btnProfile"_s);
    EXPECT_EQ(later.ShowEx(), ModalResult::Yes) << "the profile used last";
    EXPECT_EQ(later.SelectedProfile(), u"B"_s);
    platform::WriteRegistryText(u"PrinterProfile"_s, {});
}

TEST_F(PrintDialogs, TheSheetIsShownOnTheSelectedProfilesPaper) {
    QImage tile(370, 470, QImage::Format_RGB32);
    tile.fill(Qt::gray);
    beforePrint.SetSheet({tile, 4, 2, 254, u"x"_s, 20});
    printer.paper = QSizeF(152, 102);
    printing::StoreCalibration(data.DataFolder(), u"B"_s, {1.01, 1, {}});
    driver.Expect(u"BeforPrintDlgFm"_s, [this](QWidget& shown) {
        const auto text = [&](const char* label) { return Child<QLabel>(shown, label).text(); };
        const auto& view = Child<dialogs::PaperView>(shown, "PaperView");
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return text("PaperLabel") == u"Papier: 152,0 × 102,0 mm"; }));
        EXPECT_EQ(text("WarningLabel"), u""_s);
        const QSize least = shown.layout()->totalMinimumSize();
        EXPECT_EQ(least.boundedTo({667, 336}), least) << "scrolls on half of 1366 x 768";
        const QPointF edge = view.ToWidget(QPointF(-76, 0));
        EXPECT_NEAR(view.ToWidget(QPointF(76, 0)).x() - edge.x(), view.width() - 60, 1);
        QWheelEvent wheel(edge, view.mapToGlobal(edge), {}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(const_cast<dialogs::PaperView*>(&view), &wheel);
        EXPECT_GT(view.Zoom(), 1.4);
        EXPECT_LT((view.ToWidget(QPointF(-76, 0)) - edge).manhattanLength(), 1);

        printer.paper = QSizeF(100, 100);
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return text("PaperLabel").contains(u"quer 101,0 %"); }));
        EXPECT_EQ(text("WarningLabel"),
                  u"Abgeschnitten (rot): links 23,5\u00a0mm und rechts 23,5\u00a0mm"_s)
            << "a printer that shrinks loses more";
        printer.failure = u"Der Druckdienst antwortet nicht."_s;
        Child<QListWidget>(shown, "lbProfiles").setCurrentRow(0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return text("PaperLabel").isEmpty(); }));
        shown.close();
    });
    EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
}

TEST_F(PrintDialogs, OnlyADefaultProfileThatIsThereStartsTheTimer) {
    auto& timer = *beforePrint.findChild<QTimer*>(u"Timer"_s);
    EXPECT_EQ(timer.interval(), 500);
    PrintAtOnce(1);
    QImage tile(350, 450, QImage::Format_RGB32);
    tile.fill(Qt::gray);
    beforePrint.SetSheet({tile, 1, 1, 254, {}});
    bool byKey = true;
    const auto expect = [&](const QString& selected, bool running, bool leavesIt = false) {
        driver.Expect(u"BeforPrintDlgFm"_s, [&, selected, running, leavesIt](QWidget& shown) {
            EXPECT_EQ(timer.isActive(), running);
            const QImage view = Child<dialogs::PaperView>(shown, "PaperView").grab().toImage();
            EXPECT_EQ(view.pixelColor(view.rect().center()), QColor(Qt::gray)) << "empty";
            EXPECT_EQ(beforePrint.SelectedProfile(), selected);
            auto& cancel = Child<QPushButton>(shown, "btnCancel");
            if (leavesIt) {
                cancel.click();
                return;
            }
            if (byKey) {
                QTest::keyClick(shown.findChild<QListWidget*>(u"lbProfiles"_s), Qt::Key_Down);
            } else {
                QTest::mousePress(&cancel, Qt::LeftButton);
            }
            EXPECT_FALSE(timer.isActive()) << "the user is hurried";
            byKey = !byKey;
            cancel.click();
        });
        EXPECT_EQ(beforePrint.ShowEx(), ModalResult::Cancel);
        EXPECT_FALSE(timer.isActive());
    };
    expect(u"B"_s, true);
    expect(u"B"_s, true, true);
    data.DeletePrinterProfile(u"A"_s);
    data.SavePrintProfile(u"C"_s);
    expect(u"B"_s, true);  // its place is another's now
    data.DeletePrinterProfile(u"B"_s);
    expect({}, false);
}

}  // namespace kadrona::testing
