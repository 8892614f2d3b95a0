// Saving through the real window: the actions, the save dialog, what an error looks like.

#include <QComboBox>
#include <QFileDialog>
#include <QImageReader>
#include <QLineEdit>

#include "core/SheetLayout.h"
#include "dialogs/SettingsDialog.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class SavingStory : public Story {
 protected:
    SavingStory() {
        QDir().mkpath(installation.Path("saved"));
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
    }

    template <typename Control>
    Control& Setting(const char* name) {
        auto* settings = window->findChild<dialogs::TEinstellungenFm*>();
        return *settings->findChild<Control*>(QLatin1StringView(name));
    }

    /// Opens the photo and makes one photo of it. Opening activates the profile, so that what a
    /// test sets goes between the two.
    void MakeSinglePhoto(const std::function<void()>& set = [] {}) {
        Open("photo.png");
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
        set();
        window->findChild<QComboBox*>(u"Anzahl"_s)->setCurrentIndex(core::SinglePhotoLayout);
        Trigger(u"acCrop"_s);
    }

    /// Types a name into the save dialog and accepts it.
    static void Type(QWidget& shown, const QString& name) {
        shown.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(name);
        dynamic_cast<QDialog&>(shown).accept();
    }

    QStringList SavedFiles() const {
        return QDir(installation.Path("saved")).entryList(QDir::Files, QDir::Name);
    }
};

TEST_F(SavingStory, QuickSaveWritesTheScaledPhotoAndShowsTheUnscaledOne) {
    MakeSinglePhoto([this] { Setting<QAbstractButton>("ScaleImageCk").setChecked(true); });
    const QSize made = Image().Photo().Size();
    ASSERT_NE(made, QSize(413, 531));
    for (int i = 0; i < 2; ++i) {
        driver.Answer(
            u"Das Bild wurde unter %1 gespeichert"_s.arg(installation.Path("saved/Bildname.jpg")));
        Trigger(u"acSaveImageFast"_s);
    }
    EXPECT_EQ(SavedFiles(), QStringList(u"Bildname.jpg"_s));
    EXPECT_EQ(QImageReader(installation.Path("saved/Bildname.jpg")).size(), QSize(413, 531));
    EXPECT_EQ(Image().Photo().Size(), made);
    EXPECT_TRUE(IsEnabled(u"acSaveImageFast"_s));
}

TEST_F(SavingStory, MakingThePhotosPrintsThenSavesEvenWherePrintingFails) {
    MakeSinglePhoto([this] {
        printer.failure = u"Der Drucker „Laser“ nimmt keine Aufträge an."_s;
        driver.Expect(u"BeforPrintDlgFm"_s,
                      [](QWidget& shown) { dynamic_cast<QDialog&>(shown).accept(); });
        driver.Answer(printer.failure);
        driver.Answer(u"gespeichert"_s);
        Setting<QAbstractButton>("PrintAfterCrop").setChecked(true);
        Setting<QAbstractButton>("ImageAutoSave2").setChecked(true);
    });
    EXPECT_EQ(SavedFiles(), QStringList(u"Bildname.jpg"_s));
    EXPECT_FALSE(window->Actions()[u"acSaveImageFast"_s]->isVisible());
}

TEST_F(SavingStory, AFailingQuickSaveIsReportedWithPathAndReason) {
    MakeSinglePhoto();
    QDir().mkpath(installation.Path("saved/Bildname.jpg"));
    driver.Answer(installation.Path("saved/Bildname.jpg"));
    Trigger(u"acSaveImageFast"_s);
    EXPECT_TRUE(IsEnabled(u"acSaveImageFast"_s));
}

TEST_F(SavingStory, TheSaveDialogProposesAndCompletesTheName) {
    MakeSinglePhoto();
    driver.Expect(u"SaveDialog"_s, [this](QWidget& shown) {
        auto& dialog = dynamic_cast<QFileDialog&>(shown);
        EXPECT_EQ(dialog.windowTitle(), u"Passbild speichern"_s);
        EXPECT_EQ(dialog.nameFilters(),
                  QStringList({u"JPEG-Grafikdatei (*.jpg)"_s, u"JPEG-Grafikdatei (*.jpeg)"_s,
                               u"Bitmaps (*.bmp)"_s, u"PDF (*.pdf)"_s, u"TIFF (*.tif)"_s}));
        EXPECT_EQ(dialog.directory().absolutePath(), installation.Path("saved"));
        EXPECT_EQ(shown.findChild<QLineEdit*>(u"fileNameEdit"_s)->text(), u"photo_kdr"_s);
        dynamic_cast<QDialog&>(shown).accept();
    });
    Trigger(u"acSave"_s);
    EXPECT_EQ(SavedFiles(), QStringList(u"photo_kdr.jpg"_s));

    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) {
        auto* types = shown.findChild<QComboBox*>(u"fileTypeCombo"_s);
        types->setCurrentIndex(4);
        Q_EMIT types->textActivated(types->currentText());
        Type(shown, u"bild"_s);
    });
    Trigger(u"acSave"_s);
    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { shown.close(); });
    Trigger(u"acSave"_s);
    EXPECT_EQ(SavedFiles(), QStringList({u"bild.tif"_s, u"photo_kdr.jpg"_s}));
}

TEST_F(SavingStory, ANameWithADotGetsAnExtensionAndIsNotReplacedUnasked) {
    installation.Write("saved/max.2024_kdr.jpg", "old");
    MakeSinglePhoto();
    const auto typeName = [](QWidget& shown) { Type(shown, u"max.2024_kdr"_s); };
    driver.Expect(u"SaveDialog"_s, typeName).Press(u"MessageBox"_s, u"NoButton"_s);
    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { shown.close(); });
    Trigger(u"acSave"_s);
    EXPECT_EQ(QFileInfo(installation.Path("saved/max.2024_kdr.jpg")).size(), 3);

    driver.Expect(u"SaveDialog"_s, typeName).Press(u"MessageBox"_s, u"YesButton"_s);
    Trigger(u"acSave"_s);
    EXPECT_GT(QFileInfo(installation.Path("saved/max.2024_kdr.jpg")).size(), 3);
    EXPECT_EQ(SavedFiles().size(), 1);
}

}  // namespace kadrona::testing
