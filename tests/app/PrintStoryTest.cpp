// Printing through the real windows: every way from the sheet to the printer and off it.

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>

#include "app/PrintFlow.h"
#include "dialogs/SettingsDialog.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// A sheet of 150 x 95 mm, printer profiles "Foto" and "Brief", and the printer "Laser".
class PrintStory : public Story {
 protected:
    PrintStory() {
        AddProfile(u"Foto"_s, photoPrinter);
        AddProfile(u"Brief"_s, letterPrinter);
    }

    void AddProfile(const QString& name, const printing::PrinterChoice& choice) {
        const printing::PrinterChoice before = std::exchange(printer.current, choice);
        window->Data().SavePrintProfile(name);
        printer.current = before;
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
        auto& settings = *window->findChild<dialogs::TEinstellungenFm*>();
        settings.RefreshPrinterProfiles();
        settings.findChild<QComboBox*>(u"PrintProfileBox"_s)->setCurrentIndex(profile);
        settings.findChild<QCheckBox*>(u"PrintAfterCrop"_s)->setChecked(true);
    }

    /// Expects the before-print dialog and prints with the profile in this row.
    void PrintWith(int profile) {
        driver.Expect(u"BeforPrintDlgFm"_s, [profile](QWidget& shown) {
            shown.findChild<QListWidget*>(u"lbProfiles"_s)->setCurrentRow(profile);
            shown.findChild<QPushButton*>(u"btnProfile"_s)->click();
        });
    }

    void ExpectMessage(const QString& part, const QString& button = u"OkButton"_s) {
        driver.Expect(u"MessageBox"_s, [part, button](QWidget& shown) {
            const QString text = dynamic_cast<QMessageBox&>(shown).text();
            EXPECT_TRUE(text.contains(part)) << text.toStdString();
            shown.findChild<QPushButton*>(button)->click();
        });
    }

    /// The printers that the jobs went to.
    QStringList Printers() const {
        QStringList names;
        for (const FakePrinter::Job& job : printer.jobs) {
            names.append(job.printer.device);
        }
        return names;
    }

    const printing::PrinterChoice photoPrinter =
        FakePrinter::Choice("Fotodrucker", "PageSize=A6\ncopies=2\n");
    const printing::PrinterChoice letterPrinter = FakePrinter::Choice("Briefdrucker", "");
};

TEST_F(PrintStory, AProfileSetsThePrinterAndStaysTheCurrentOne) {
    EXPECT_FALSE(IsEnabled(u"acPrintImage"_s));
    MakeSheet();
    EXPECT_TRUE(IsEnabled(u"acPrintImage"_s));
    PrintWith(0);
    Trigger(u"acPrintImage"_s);
    ASSERT_EQ(printer.jobs.size(), 1);
    EXPECT_EQ(printer.jobs.first().printer, photoPrinter);
    EXPECT_EQ(printer.current, photoPrinter);
    EXPECT_EQ(printer.setupsShown, 0);

    const printing::PrintImage& image = printer.jobs.first().image;
    EXPECT_EQ(image.tile.size(), QSize(375, 475)) << "one photo with its border, not the sheet";
    EXPECT_EQ(image.tile.cacheKey(), Image().Photo().Tile().cacheKey()) << "no copy of the pixels";
    EXPECT_EQ(QSize(image.columns, image.rows), QSize(4, 2));
    EXPECT_EQ(image.dotsPerInch, 254);
    EXPECT_EQ(image.Millimetres(), QSizeF(150, 95));
    EXPECT_EQ(image.title, u"photo.png"_s);
}

TEST_F(PrintStory, WithoutAProfileTheSetupDialogDecides) {
    MakeSheet();
    driver.Press(u"BeforPrintDlgFm"_s, u"btnNoProfile"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(printer.setupsShown, 1);
    EXPECT_TRUE(printer.jobs.isEmpty()) << "the set-up was cancelled";

    printer.setupChoice = letterPrinter;
    driver.Press(u"BeforPrintDlgFm"_s, u"btnNoProfile"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(Printers(), QStringList(u"Briefdrucker"_s));
}

TEST_F(PrintStory, CancellingPrintsNothingAndAnyOtherResultTheCurrentPrinter) {
    MakeSheet();
    driver.Press(u"BeforPrintDlgFm"_s, u"btnCancel"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_TRUE(printer.jobs.isEmpty());
    driver.Expect(u"BeforPrintDlgFm"_s,
                  [](QWidget& shown) { dynamic_cast<QDialog&>(shown).accept(); });
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(Printers(), QStringList(u"Laser"_s));
    EXPECT_EQ(printer.setupsShown, 0);
}

TEST_F(PrintStory, MakingThePhotosPrintsThemAtOnceWithTheDefaultProfile) {
    window->findChild<QWidget*>(u"BeforPrintDlgFm"_s)->findChild<QTimer*>()->setInterval(20);
    MakeSheet([this] {
        PrintAtOnce(1);
        driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget&) {});
    });
    EXPECT_EQ(Printers(), QStringList(u"Briefdrucker"_s));
    EXPECT_FALSE(window->Actions()[u"acPrintImage"_s]->isVisible());
    EXPECT_FALSE(window->Actions()[u"acSave"_s]->isVisible());
}

TEST_F(PrintStory, PrintingAtOnceWithoutADefaultProfileAsks) {
    MakeSheet([this] {
        PrintAtOnce(-1);
        PrintWith(0);
    });
    EXPECT_EQ(Printers(), QStringList(u"Fotodrucker"_s));
}

TEST_F(PrintStory, APaperThatIsTooSmallWarnsAndCanBeRefused) {
    MakeSheet();
    printer.paper = QSizeF(105, 148);
    PrintWith(0);
    ExpectMessage(u"Blatt:\t150,0 × 95,0 mm\nPapier:\t105,0 × 148,0 mm\n"_s, u"NoButton"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_TRUE(printer.jobs.isEmpty());
    PrintWith(0);
    ExpectMessage(u"Trotzdem drucken?"_s, u"YesButton"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(printer.jobs.size(), 1);
    printer.paper = {};
    PrintWith(0);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(printer.jobs.size(), 2) << "an unknown paper warns of nothing";
}

TEST_F(PrintStory, TheWarningKnowsTheBordersAndTheTurnedPaper) {
    const QSizeF sheet(150.0, 100.0);
    for (const QSizeF paper : {QSizeF(150, 100), QSizeF(149.96, 99.96), QSizeF(210, 297)}) {
        EXPECT_EQ(app::PaperWarning(sheet, paper), QString()) << paper.width();
    }
    EXPECT_TRUE(app::PaperWarning(sheet, {149.94, 100}).contains(u"149,9 × 100,0 mm"));
    EXPECT_TRUE(app::PaperWarning(sheet, {100, 150}).contains(u"Im Querformat würde es passen"));
    EXPECT_TRUE(app::PaperWarning({100, 150}, sheet).contains(u"Im Hochformat würde es passen"));
    EXPECT_FALSE(app::PaperWarning(sheet, {99, 150}).contains(u"würde es passen"));
}

TEST_F(PrintStory, TheLayersErrorIsShownAndNothingIsTriedTwice) {
    MakeSheet();
    printer.failure = u"Der Drucker „Laser“ ist angehalten."_s;
    for (const QString& button : {u"btnProfile"_s, u"btnNoProfile"_s}) {
        driver.Expect(u"BeforPrintDlgFm"_s, [button](QWidget& shown) {
            shown.findChild<QListWidget*>(u"lbProfiles"_s)->setCurrentRow(0);
            shown.findChild<QPushButton*>(button)->click();
        });
        ExpectMessage(printer.failure);
        Trigger(u"acPrintImage"_s);
    }
    ExpectMessage(printer.failure);
    Trigger(u"acPrinSetup"_s);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    window->Data().SetPrinterLayer(nullptr);
    ExpectMessage(u"Es ist kein Druckdienst vorhanden."_s);
    Trigger(u"acPrinSetup"_s);
    EXPECT_TRUE(printer.jobs.isEmpty());
}

TEST_F(PrintStory, AProfileWhoseFileIsMissingPrintsWithTheCurrentPrinter) {
    MakeSheet();
    for (const QString& file : QDir(window->Data().DataFolder()).entryList({u"prn*.tmp"_s})) {
        QFile::remove(window->Data().DataFolder() + u'/' + file);
    }
    PrintWith(0);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(Printers(), QStringList(u"Laser"_s));
}

TEST_F(PrintStory, ASheetWithoutAResolutionIsRefusedBeforeAnythingIsAsked) {
    MakeSheet();
    Image().SetResolution({0});
    ExpectMessage(u"Auflösung ist nicht bekannt"_s);
    Trigger(u"acPrintImage"_s);
    EXPECT_TRUE(printer.jobs.isEmpty());
}

TEST_F(PrintStory, TheSetupStaysForLaterPrinting) {
    printer.setupChoice = letterPrinter;
    Trigger(u"acPrinSetup"_s);
    EXPECT_EQ(printer.current, letterPrinter);
}

TEST_F(PrintStory, AProfileMadeIsOfferedAndADeletedOneIsGoneFromEveryList) {
    window->Data().DeletePrinterProfile(u"Foto"_s);
    window->Data().DeletePrinterProfile(u"Brief"_s);
    Start();
    printer.setupChoice = photoPrinter;
    driver.Expect(u"PrintProfilDlg"_s, [this](QWidget& shown) {
        driver.Expect(u"LineDialog"_s, [](QWidget& line) {
            line.findChild<QLineEdit*>(u"LineEdit"_s)->setText(u"Glanz"_s);
            line.findChild<QPushButton*>(u"OkButton"_s)->click();
        });
        shown.findChild<QPushButton*>(u"btnNewProfile"_s)->click();
        shown.close();
    });
    Trigger(u"acPrinterProfilDlg"_s);
    MakeSheet();
    printer.current = letterPrinter;
    PrintWith(0);
    Trigger(u"acPrintImage"_s);
    EXPECT_EQ(Printers(), QStringList(u"Fotodrucker"_s));

    PrintAtOnce(0);
    EXPECT_FALSE(window->Actions()[u"acPrintImage"_s]->isVisible());
    driver.Expect(u"PrintProfilDlg"_s, [this](QWidget& shown) {
        driver.Press(u"MessageBox"_s, u"YesButton"_s).Press(u"MessageBox"_s, u"OkButton"_s);
        shown.findChild<QListWidget*>(u"lbProfiles"_s)->setCurrentRow(0);
        shown.findChild<QPushButton*>(u"btnDelProfile"_s)->click();
        shown.close();
    });
    Trigger(u"acPrinterProfilDlg"_s);
    EXPECT_TRUE(window->Actions()[u"acPrintImage"_s]->isVisible()) << "the settings are reset";
    EXPECT_EQ(window->findChild<QComboBox*>(u"PrintProfileBox"_s)->count(), 0);
    driver.Expect(u"BeforPrintDlgFm"_s, [](QWidget& shown) {
        EXPECT_EQ(shown.findChild<QListWidget*>(u"lbProfiles"_s)->count(), 0);
        shown.close();
    });
    Trigger(u"acPrintImage"_s);
}

}  // namespace kadrona::testing
