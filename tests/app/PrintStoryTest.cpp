// Printing through the real windows: every way from the sheet to the printer and off it.

#include <QLabel>
#include <QSpinBox>

#include "printing/Calibration.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// A sheet of 150 x 95 mm, a profile for each of two printers, and the printer "Laser".
class PrintStory : public Story {
 protected:
    PrintStory() {
        for (const printing::PrinterChoice& choice : {photoPrinter, letterPrinter}) {
            printer.current = choice;
            window->Data().SavePrintProfile(choice.device);
        }
        printer.current.device = u"Laser"_s;
    }

    /// Opens the photo and makes the sheet. Opening activates the profile, so that what a test sets
    /// goes between the two.
    void MakeSheet(const std::function<void()>& set = [] {}) {
        Open("photo.png");
        set();
        Trigger(u"acCrop"_s);
    }

    /// Immediate printing with the default profile in this row.
    void PrintAtOnce(int profile) {
        Child<dialogs::TEinstellungenFm>(*window).RefreshPrinterProfiles();
        Setting<QComboBox>("PrintProfileBox").setCurrentIndex(profile);
        Setting<QCheckBox>("PrintAfterCrop").setChecked(true);
    }

    void ExpectBeforePrint(const QString& button = u"btnProfile"_s) {
        driver.Expect(u"BeforPrintDlgFm"_s, [button](QWidget& shown) {
            Child<QListWidget>(shown, "lbProfiles").setCurrentRow(0);
            ClickButton(shown, button);
        });
    }
    /// The same, and the button that starts it.
    void Print(const QString& button = u"btnProfile"_s) {
        ExpectBeforePrint(button);
        Trigger(u"acPrintImage"_s);
    }

    /// The printers that the jobs since the last call went to, joined.
    QString NewJobs() {
        QStringList names;
        for (const FakePrinter::Job& job : std::exchange(printer.jobs, {})) {
            names.append(job.printer.device);
        }
        return names.join(u'|');
    }

    QString JobText() const { return window->findChild<QLabel*>(u"JobStatus"_s)->text(); }

    const printing::PrinterChoice photoPrinter =
        FakePrinter::Choice("Fotodrucker", "PageSize=A6\ncopies=2\n");
    const printing::PrinterChoice letterPrinter = FakePrinter::Choice("Briefdrucker", "");
};

TEST_F(PrintStory, AProfileSetsThePrinterAndStaysTheCurrentOne) {
    EXPECT_FALSE(IsEnabled(u"acPrintImage"_s));
    MakeSheet();
    const printing::Calibration calibration{1.02, 1, {}};
    printing::StoreCalibration(window->Data().DataFolder(), photoPrinter.device, calibration);
    Print();
    ASSERT_EQ(printer.jobs.size(), 1);
    EXPECT_EQ(printer.jobs.first().image.calibration, calibration);
    EXPECT_EQ(printer.jobs.first().printer, photoPrinter);
    EXPECT_EQ(printer.current, photoPrinter);
    EXPECT_TRUE(JobText().contains(photoPrinter.device));

    const printing::PrintImage& image = printer.jobs.first().image;
    EXPECT_EQ(image.tile.cacheKey(), Image().Photo().Tile().cacheKey()) << "no copy of the pixels";
    EXPECT_EQ(QSize(image.columns, image.rows), QSize(4, 2));
    EXPECT_EQ(image.Millimetres(), QSizeF(150, 95));
    EXPECT_EQ(image.title, u"photo.png"_s);

    QDir folder(window->Data().DataFolder());
    for (const QString& file : folder.entryList({u"prn*.tmp"_s})) {
        folder.remove(file);
    }
    printer.jobs.clear();
    printer.current.device = u"Laser"_s;
    Print();
    EXPECT_EQ(printer.jobs.last().image.calibration, printing::Calibration()) << "of another";
    EXPECT_EQ(NewJobs(), u"Laser"_s) << "a profile without its file is passed over";
}

TEST_F(PrintStory, WithoutAProfileTheSetupDialogDecidesAndCancellingPrintsNothing) {
    MakeSheet();
    for (const QString& button : {u"btnCancel"_s, u"btnNoProfile"_s}) {
        Print(button);
        EXPECT_EQ(NewJobs(), QString());
    }
    EXPECT_EQ(printer.setupsShown, 1);
    printer.setupChoice = letterPrinter;
    Print(u"btnNoProfile"_s);
    EXPECT_EQ(NewJobs(), u"Briefdrucker"_s);

    driver.Press(u"PrintProfilDlg"_s, u"btnClose"_s);
    Trigger(u"acPrinterProfilDlg"_s);
    printer.setupChoice = photoPrinter;
    Trigger(u"acPrinSetup"_s);
    driver.Accept(u"BeforPrintDlgFm"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(NewJobs(), u"Fotodrucker"_s) << "any other result: as it stands";
}

TEST_F(PrintStory, MakingThePhotosPrintsThemAtOnceWithTheDefaultProfile) {
    MakeSheet([this] {
        PrintAtOnce(1);
        driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget&) {});
    });
    EXPECT_EQ(NewJobs(), u"Briefdrucker"_s);
    EXPECT_FALSE(Named(u"acPrintImage"_s).isVisible());
    EXPECT_FALSE(Named(u"acSave"_s).isVisible());
    MakeSheet([this] {
        PrintAtOnce(-1);
        ExpectBeforePrint();
    });
    EXPECT_EQ(NewJobs(), u"Fotodrucker"_s) << "without a default the user chooses";
}

TEST_F(PrintStory, TheJobIsFollowedAndTheLastSheetCanBePrintedAgain) {
    EXPECT_FALSE(IsEnabled(u"acPrintAgain"_s));
    MakeSheet([this] {
        PrintAtOnce(-1);
        driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) {
            Child<QListWidget>(shown, "lbProfiles").setCurrentRow(0);
            Child<QSpinBox>(shown, "CopiesBox").setValue(3);
            Child<QPushButton>(shown, "btnProfile").click();
        });
    });
    EXPECT_FALSE(Named(u"acPrintImage"_s).isVisible());
    using Stage = printing::JobState::Stage;
    Q_EMIT printer.watch->Changed({Stage::Held, u"angehalten: Kein Papier"_s});
    EXPECT_EQ(JobText(), u"Drucker „Fotodrucker“: angehalten: Kein Papier"_s);

    printer.current = letterPrinter;
    Open("photo.png");
    Trigger(u"acPrintAgain"_s);
    ASSERT_EQ(printer.jobs.size(), 2);
    for (const FakePrinter::Job& job : printer.jobs) {
        EXPECT_EQ(job.printer, photoPrinter);
        EXPECT_EQ(job.image.copies, 3);
        EXPECT_EQ(job.image.tile.cacheKey(), printer.jobs.first().image.tile.cacheKey());
    }
}

TEST_F(PrintStory, APaperThatIsTooSmallWarnsAndCanBeRefusedOrTurned) {
    MakeSheet();
    printer.paper = QSizeF(105, 147);
    const QString lost = u"links 21,3\u00a0mm und rechts 21,3\u00a0mm gehen verloren"_s;
    for (const bool print : {false, true}) {
        ExpectBeforePrint();
        driver.Answer({lost, u"Fotos: 147,5 × 92,5 mm\nPapier: 105,0 × 147,0 mm, davon"_s},
                      print ? u"YesButton"_s : u"NoButton"_s);
        Trigger(u"acPrintImage"_s);
        EXPECT_EQ(NewJobs(), print ? u"Fotodrucker"_s : QString());
    }
    printer.paper = QSizeF(105, 148);  // turned, only the white around the photos is lost
    for (const bool turn : {false, true}) {
        ExpectBeforePrint();
        driver.Answer(u"Im Querformat drucken?"_s, turn ? u"YesButton"_s : u"NoButton"_s);
        if (!turn) {
            driver.Answer(u"Trotzdem drucken?"_s, u"NoButton"_s);
        }
        Trigger(u"acPrintImage"_s);
    }
    ASSERT_EQ(printer.jobs.size(), 1);
    EXPECT_EQ(printer.jobs.last().image.orientation, printing::Orientation::Turned);
}

TEST_F(PrintStory, ErrorsAreShownAndNothingIsTriedTwice) {
    MakeSheet();
    printer.failure = u"Der Drucker „Laser“ ist angehalten."_s;
    for (const QString& button : {u"btnProfile"_s, u"btnNoProfile"_s}) {
        ExpectBeforePrint(button);
        driver.Answer(printer.failure);
        Trigger(u"acPrintImage"_s);
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    Image().SetResolution({0});
    driver.Answer(u"Auflösung ist nicht bekannt"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(NewJobs(), QString());
    service = nullptr;
    Start();
    driver.Answer(u"Dieses Kadrona wurde ohne Druckdienst gebaut und kann nicht drucken."_s);
    Trigger(u"acPrinSetup"_s);
}

}  // namespace kadrona::testing
