// Saving through the real window: the actions, the save dialog, what an error looks like.

#include <QFileDialog>
#include <QImageReader>
#include <QProcess>
#include <QStandardPaths>

#include "core/base/Product.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST_F(SavingStory, QuickSaveWritesTheScaledPhotoAndShowsTheUnscaledOne) {
    MakeSinglePhoto([this] { Tick("ScaleImageCk"); }, 1);
    const QSize made = Image().Photo().Size();
    ASSERT_NE(made, QSize(413, 531));
    for (int i = 0; i < 2; ++i) {
        driver.Answer({u"Das Bild wurde unter %1 gespeichert"_s.arg(
            installation.Path("saved/Bildname.jpg"))});
        Trigger(u"acSaveImageFast"_s);
    }
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg"_s);
    EXPECT_EQ(QImageReader(installation.Path("saved/Bildname.jpg")).size(), QSize(413, 531));
    EXPECT_EQ(Image().Photo().Size(), made);
    EXPECT_EQ(Child<QLabel>(*window, "StatusNotice").text(),
              u"Gespeichert: Bildname.jpg, 50,7 x 65,2 mm"_s)
        << "what was written";
    EXPECT_TRUE(IsEnabled(u"acSaveImageFast"_s));
}

TEST_F(SavingStory, QuickSaveAsksBeforeSomethingIsLost) {
    const auto save = [this](const QString& question, const QString& answer) {
        driver.Answer(question, answer);
        Trigger(u"acSaveImageFast"_s);
    };
    MakeSinglePhoto([this] { Tick("ScaleImageCk"); });
    save(u"gespeichert"_s, u"OkButton"_s);
    SavePhoto("other.png", QSize(1200, 1600), 50);
    photoName = "other.png";
    MakeSinglePhoto([this] { Tick("ScaleImageCk"); });
    driver.Answer(u"steht das Passbild aus „photo.png“"_s, u"NoButton"_s);
    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { Type(shown, u"anderer"_s); });
    save(u"gespeichert"_s, u"OkButton"_s);
    EXPECT_GT(qRed(QImage(installation.Path("saved/Bildname.jpg")).pixel(0, 0)), 100);
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg|anderer.jpg"_s);

    const auto refuse = [this](const QString& question) {
        driver.Answer(question, u"NoButton"_s);
        driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { shown.close(); });
        Trigger(u"acSaveImageFast"_s);
    };
    SavePhoto("saved/eigen.jpg", QSize(1200, 1600), 50);
    photoName = "saved/eigen.jpg";
    MakeSinglePhoto([this] { Setting<QLineEdit>("FileNameEd").setText(u"eigen"_s); });
    refuse(u"ist das geöffnete Foto selbst"_s);
    Setting<QLineEdit>("FileNameEd").setText(u"anderer"_s);
    Setting<QLineEdit>("ImageDestinationDir").setText(installation.Path("."));
    refuse(u"gehört zum Bildarchiv"_s);
    Setting<QLineEdit>("FileNameEd").setText(u"../saved/../Bildname"_s);
    driver.Answer(u"führt aus dem Ordner"_s, u"OkButton"_s);
    Trigger(u"acSaveImageFast"_s);
    Setting<QLineEdit>("FileNameEd").setText(u"Bildname"_s);
    ASSERT_TRUE(QFile::remove(installation.Path("saved/eigen.jpg")));

    Setting<QLineEdit>("ImageSaveDir").clear();
    save(u"kein Ordner"_s, u"NoButton"_s);
    driver.Answer(u"kein Ordner"_s, u"YesButton"_s);
    driver.Expect(u"FolderDialog"_s, [this](QWidget& shown) {
        EXPECT_TRUE(dynamic_cast<QFileDialog&>(shown).directory().exists());
        Type(shown, installation.Path("program"));
    });
    save(u"gespeichert"_s, u"OkButton"_s);
    EXPECT_TRUE(QFile::exists(installation.Path("program/Bildname.jpg")));

    Open("photo.png");
    Tick("ScaleImageCk");
    Tick("ImageAutoSave2");
    SetLayout(0);
    Trigger(u"acCrop"_s);  // saves nothing by itself: there are several photos
    SetLayout(core::SinglePhotoLayout);
    save(u"Das Blatt hat 8 Bilder"_s, u"NoButton"_s);
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg|anderer.jpg"_s);
}

TEST_F(SavingStory, MakingThePhotosPrintsThenSavesEvenWherePrintingFails) {
    MakeSinglePhoto([this] {
        printer.failure = u"Der Drucker „Laser“ nimmt keine Aufträge an."_s;
        driver.Accept(u"BeforPrintDlgFm"_s);
        driver.Answer(printer.failure);
        driver.Answer(u"gespeichert"_s);
        Tick("PrintAfterCrop");
        Tick("ImageAutoSave2");
    });
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg"_s);
    EXPECT_FALSE(Named(u"acSaveImageFast"_s).isVisible());
}

TEST_F(SavingStory, TheSaveDialogProposesAndCompletesTheName) {
    MakeSinglePhoto();
    driver.Expect(u"SaveDialog"_s, [this](QWidget& shown) {
        auto& dialog = dynamic_cast<QFileDialog&>(shown);
        EXPECT_EQ(dialog.windowTitle(), u"Passbild speichern"_s);
        EXPECT_EQ(dialog.nameFilters().join(u'|'),
                  u"JPEG-Grafikdatei (*.jpg)|JPEG-Grafikdatei (*.jpeg)|Bitmaps (*.bmp)|"
                  "PDF (*.pdf)|TIFF (*.tif)"_s);
        EXPECT_EQ(dialog.directory().absolutePath(), installation.Path("saved"));
        EXPECT_EQ(Child<QLineEdit>(shown, "fileNameEdit").text(), u"photo_kdr"_s);
        dynamic_cast<QDialog&>(shown).accept();
    });
    Trigger(u"acSave"_s);
    EXPECT_EQ(SavedFiles(), u"photo_kdr.jpg"_s);
    EXPECT_TRUE(Child<QLabel>(*window, "StatusNotice").text().contains(u"photo_kdr.jpg"_s));

    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) {
        auto& types = Child<QComboBox>(shown, "fileTypeCombo");
        types.setCurrentIndex(4);
        Q_EMIT types.textActivated(types.currentText());
        Type(shown, u"bild"_s);
    });
    Trigger(u"acSave"_s);
    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) {
        EXPECT_EQ(dynamic_cast<QFileDialog&>(shown).selectedNameFilter(), u"TIFF (*.tif)"_s);
        shown.close();
    });
    Trigger(u"acSave"_s);
    EXPECT_EQ(SavedFiles(), u"bild.tif|photo_kdr.jpg"_s);
}

TEST_F(SavingStory, NothingStaleOfTheOpenedFileIsSaved) {
    const auto exiftool = [](const QStringList& arguments) {
        QProcess process;
        process.start(u"exiftool"_s, arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput());
    };
    if (QStandardPaths::findExecutable(u"exiftool"_s).isEmpty()) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    QImage photo(1200, 1600, QImage::Format_RGB32);
    photo.fill(Qt::gray);
    ASSERT_TRUE(photo.scaled(160, 120).save(installation.Path("thumbnail.jpg")));
    ASSERT_TRUE(photo.save(installation.Path("photo.jpg")));
    const QString changed = exiftool(
        {u"-n"_s, u"-Orientation=6"_s, u"-ExifImageWidth=1200"_s, u"-ExifImageHeight=1600"_s,
         u"-XResolution=72"_s, u"-Software=camera"_s, u"-Model=camera"_s,
         u"-EXIF:SerialNumber=4711"_s, u"-GPSLatitude=52.5"_s, u"-GPSLatitudeRef=N"_s,
         u"-ThumbnailImage<="_s + installation.Path("thumbnail.jpg"),
         installation.Path("photo.jpg")});
    ASSERT_TRUE(changed.contains(u"1 image files updated"_s)) << changed.toStdString();

    photoName = "photo.jpg";
    for (const int type : {0, 1}) {  // JPG, JP2
        MakeSinglePhoto([this, type] {
            Tick("ScaleImageCk");
            Setting<QComboBox>("FileTypCombo").setCurrentIndex(type);
        });
        driver.Answer(u"gespeichert"_s);
        Trigger(u"acSaveImageFast"_s);
        const QString file =
            installation.Path(type == 0 ? "saved/Bildname.jpg" : "saved/Bildname.jp2");
        const QString said =
            exiftool({u"-n"_s, u"-T"_s, u"-Orientation"_s, u"-ThumbnailImage"_s, u"-Model"_s,
                      u"-SerialNumber"_s, u"-GPSLatitude"_s, u"-ImageSize"_s, u"-ExifImageWidth"_s,
                      u"-ExifImageHeight"_s, u"-IFD0:XResolution"_s, u"-Software"_s, file});
        // 413 pixels on the 35 mm of the template.
        EXPECT_EQ(said, u"-\t-\t-\t-\t-\t413 531\t413\t531\t300\t%1\n"_s.arg(
                            QString::fromLatin1(core::SoftwareText)));
    }
}

TEST_F(SavingStory, OnlyTheFileThatIsWrittenIsAskedAbout) {
    installation.Write("saved/max.2024_kdr.jpg", "old");
    installation.Write("saved/x.gif", "other");
    MakeSinglePhoto();
    const auto save = [this](const QString& typed, const QString& answer) {
        driver.Expect(u"SaveDialog"_s, [=, this](QWidget& shown) {
            driver.Press(u"MessageBox"_s, answer);
            Type(shown, typed);
            if (shown.isVisible()) {
                EXPECT_EQ(answer, u"NoButton"_s);
                shown.close();
            }
        });
        Trigger(u"acSave"_s);
    };
    const auto size = [this](const char* file) {
        return QFileInfo(installation.Path("saved/") + QLatin1StringView(file)).size();
    };
    save(u"max.2024_kdr"_s, u"NoButton"_s);
    EXPECT_EQ(size("max.2024_kdr.jpg"), 3);
    save(u"max.2024_kdr.jpg"_s, u"YesButton"_s);
    EXPECT_GT(size("max.2024_kdr.jpg"), 3);

    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { Type(shown, u"x.gif"_s); });
    Trigger(u"acSave"_s);
    EXPECT_EQ(size("x.gif"), 5);
    EXPECT_EQ(SavedFiles(), u"max.2024_kdr.jpg|x.gif|x.gif.jpg"_s);
}

TEST_F(SavingStory, ABadTargetIsToldOfByBothWaysOfSavingAndStaysAsItWas) {
    installation.Write("saved/Bildname.jpg", "old");
    QFile::setPermissions(installation.Path("saved/Bildname.jpg"), QFile::ReadOwner);
    for (const auto& [file, reason] :
         {std::pair(u"Bildname"_s, u"Die Datei ist schreibgeschützt"_s),
          std::pair(u"fehlt/Bildname"_s, u"Die Datei oder der Ordner ist nicht vorhanden"_s)}) {
        const QString name = file;
        const QStringList said{installation.Path("saved/") + name, reason};
        MakeSinglePhoto([&] { Setting<QLineEdit>("FileNameEd").setText(name); });
        driver.Answer(said);
        Trigger(u"acSaveImageFast"_s);
        EXPECT_TRUE(IsEnabled(u"acSaveImageFast"_s)) << name.toStdString();
        driver.Expect(u"SaveDialog"_s, [&](QWidget& shown) { Type(shown, name); });
        if (name == u"Bildname"_s) {
            driver.Press(u"MessageBox"_s, u"YesButton"_s);
        }
        driver.Answer(said);
        Trigger(u"acSave"_s);
    }
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg"_s);
    EXPECT_EQ(QFileInfo(installation.Path("saved/Bildname.jpg")).size(), 3);

    // The settings let a profile choose no type at all.
    MakeSinglePhoto([this] {
        Setting<QLineEdit>("FileNameEd").setText(u"Bildname"_s);
        Setting<QComboBox>("FileTypCombo").setCurrentIndex(-1);
    });
    driver.Answer({installation.Path("saved/Bildname"), u"Der Name hat keine Endung"_s});
    Trigger(u"acSaveImageFast"_s);
    EXPECT_EQ(SavedFiles(), u"Bildname.jpg"_s);
}

}  // namespace kadrona::testing
