#include <gtest/gtest.h>

#include <QImageReader>

#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"
#include "imaging/writing/ImageWriter.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Errors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// Also remembers the photo's size at each message.
class WatchingInterface : public FakeInterface {
 public:
    explicit WatchingInterface(imaging::LayeredImage& image) : image_(image) {}
    void ShowMessage(const QString& text) override {
        FakeInterface::ShowMessage(text);
        sizes.append(image_.Photo().Size());
    }
    QList<QSize> sizes;

 private:
    imaging::LayeredImage& image_;
};

class PhotoSaving : public ::testing::Test {
 protected:
    PhotoSaving() {
        data.SetSettings(&settings);
        data.SetCurrentFile(u"/photos/max.png"_s);
        folder = installation.Path("saved");
        QDir().mkpath(folder);
        image.Open(imaging::Pixels(Filled(Qt::red)), {300});
    }

    static QImage Filled(Qt::GlobalColor colour) {
        QImage image(600, 750, QImage::Format_RGB32);
        image.fill(colour);
        return image;
    }

    QString Saved(const char* name) const { return folder + u'/' + QLatin1StringView(name); }
    static QRgb FirstPixel(const QString& file) { return QImage(file).pixel(0, 0); }
    QRgb FirstPixel() { return image.Photo().Tile().pixel(0, 0); }

    Installation installation;
    FakeSettings settings;
    imaging::LayeredImage image;
    WatchingInterface ui{image};
    core::TData data{ui, installation.Folders()};
    QString folder;
};

TEST_F(PhotoSaving, QuicklyOverwritesWithoutAsking) {
    data.SaveImage(image, folder, u"Bildname.bmp"_s, false);
    image.Open(imaging::Pixels(Filled(Qt::blue)), {300});
    data.SaveImage(image, folder + u'/', u"Bildname.bmp"_s, false);
    EXPECT_EQ(FirstPixel(Saved("Bildname.bmp")), qRgb(0, 0, 255));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList(u"Bildname.bmp"_s));
    const QString message = u"Das Bild wurde unter "_s + Saved("Bildname.bmp") + u" gespeichert"_s;
    EXPECT_EQ(ui.messages, QStringList({message, message}));
    EXPECT_TRUE(ui.saveDialogs.isEmpty());
}

TEST_F(PhotoSaving, ScalesTheFileAndGivesThePhotoBack) {
    image.ChangePhoto(imaging::Pixels(Filled(Qt::green)));
    data.SaveImage(image, folder, u"a.jpg"_s, true);
    const imaging::LoadedImage saved = imaging::ReadImageFile(Saved("a.jpg"));
    EXPECT_EQ(saved.pixels.Size(), QSize(413, 531));
    EXPECT_EQ(saved.resolution.value, 207) << "as wide on paper as 600 pixels at 300 dpi";
    EXPECT_EQ(ui.sizes, QList<QSize>({QSize(413, 531)})) << "taken back after the message";
    EXPECT_EQ(image.Photo().Size(), QSize(600, 750));
    EXPECT_EQ(image.Resolution().value, 300);
    EXPECT_EQ(FirstPixel(), qRgb(0, 255, 0)) << "only the scaling is undone";
    EXPECT_FALSE(image.CanUndo());
    EXPECT_TRUE(image.AutomaticUndo());
}

TEST_F(PhotoSaving, AsksBeforeASheetOrAnotherPhotosFileIsLost) {
    data.SaveImage(image, folder, u"a.bmp"_s, false);
    data.SetCurrentFile(u"/photos/eva.png"_s);
    image.Open(imaging::Pixels(Filled(Qt::blue)), {300});
    ui.messages.clear();
    ui.answers = {true};
    ui.saveFile = Saved("eva.bmp");
    data.SaveImage(image, folder, u"a.bmp"_s, false);
    EXPECT_TRUE(ui.messages.first().contains(Saved("a.bmp"))) << qPrintable(ui.messages.first());
    EXPECT_EQ(FirstPixel(Saved("a.bmp")), qRgb(255, 0, 0)) << "another photo's";
    EXPECT_EQ(FirstPixel(Saved("eva.bmp")), qRgb(0, 0, 255));

    image.Open(imaging::Pixels(Filled(Qt::green), 4, 2), {300});
    data.SaveImage(image, folder, u"sheet.bmp"_s, true);
    EXPECT_TRUE(ui.messages.last().contains(u"8 Fotos"_s));
    EXPECT_FALSE(QFile::exists(Saved("sheet.bmp")));
    ui.answers = {true, true};
    ui.saveFile.reset();
    data.SaveImage(image, {}, u"sheet.bmp"_s, true);
    EXPECT_TRUE(ui.messages.last().contains(u"„/sheet.bmp“"_s)) << "no folder, then no name";
    EXPECT_EQ(image.Photo().Columns(), 4);
}

TEST_F(PhotoSaving, UnscaledTakesTheLastChangeBack) {
    image.ChangePhoto(imaging::Pixels(Filled(Qt::green)));
    image.ChangePhoto(imaging::Pixels(Filled(Qt::blue)));
    data.SaveImage(image, folder, u"a.bmp"_s, false);
    EXPECT_EQ(FirstPixel(Saved("a.bmp")), qRgb(0, 0, 255));
    EXPECT_EQ(FirstPixel(), qRgb(0, 255, 0));
    EXPECT_FALSE(image.CanUndo());
}

TEST_F(PhotoSaving, ByDialogProposesANameAndTakesTheFormatOfTheChosenOne) {
    image.ChangePhoto(imaging::Pixels(Filled(Qt::green)));
    ui.saveFile = Saved("max.tif");
    data.SaveImage(image, folder + u'/', {}, false);
    ASSERT_EQ(ui.saveDialogs.size(), 1);
    const core::SaveDialog& dialog = ui.saveDialogs.first();
    EXPECT_EQ(dialog.title, u"Passbild speichern"_s);
    EXPECT_EQ(dialog.initialFolder, folder);
    EXPECT_EQ(dialog.fileName, u"max_kdr"_s);
    EXPECT_EQ(dialog.defaultExtension, u"jpg"_s);
    EXPECT_EQ(QImageReader::imageFormat(Saved("max.tif")), "tiff");
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_TRUE(image.CanUndo());
    EXPECT_EQ(FirstPixel(), qRgb(0, 255, 0));
}

TEST_F(PhotoSaving, ACancelledDialogLeavesNoTrace) {
    data.SaveImage(image, folder, {}, false);
    EXPECT_EQ(ui.saveDialogs.size(), 1);
    EXPECT_TRUE(QDir(folder).isEmpty());
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_EQ(data.LastSaveFolder(), QString());
}

TEST_F(PhotoSaving, TheFolderOfTheLastSaveStandsInForAMissingOne) {
    settings[u"ImageSaveDir"_s] = folder;
    EXPECT_EQ(data.SaveFolder(), folder);
    settings[u"ImageSaveDir"_s] = installation.Path("missing");
    EXPECT_EQ(data.SaveFolder(), QString());
    // With neither folder the root is meant, as in every path built on a missing folder.
    data.SaveImage(image, {}, Saved("root.bmp").mid(1), false);
    EXPECT_TRUE(QFile::exists(Saved("root.bmp")));

    ui.saveFile = Saved("chosen.jpg");
    data.SaveImage(image, data.SaveFolder(), {}, false);
    EXPECT_EQ(data.SaveFolder(), folder + u'/');
    settings[u"ImageSaveDir"_s] = Saved("chosen.jpg");
    EXPECT_EQ(data.SaveFolder(), folder + u'/') << "a file is no folder";
}

TEST_F(PhotoSaving, TheRootIsAFolderLikeAnyOther) {
    settings[u"ImageSaveDir"_s] = u"/"_s;
    ui.saveFile = u"/Bildname.xyz"_s;
    EXPECT_THROW(data.SaveImage(image, data.SaveFolder(), {}, false), imaging::WriteError);
    EXPECT_EQ(ui.saveDialogs.first().initialFolder, u"/"_s);
    EXPECT_EQ(data.LastSaveFolder(), u"/"_s);

    settings[u"ImageSaveDir"_s] = QString();
    const QString error = TextOf<imaging::WriteError>(
        [&] { data.SaveImage(image, data.SaveFolder(), u"Bildname.xyz"_s, false); });
    EXPECT_TRUE(error.contains(u"„/Bildname.xyz“"_s)) << qPrintable(error);
}

TEST_F(PhotoSaving, AFailureNamesTheFileAndChangesNothing) {
    QDir(folder).mkpath(u"folder.bmp"_s);
    installation.Write("saved/locked.bmp", "old");
    QFile(Saved("locked.bmp")).setPermissions(QFile::ReadOwner);
    installation.Write("saved/full.bmp", "old");
    image.ChangePhoto(imaging::Pixels(Filled(Qt::green)));
    for (const bool scale : {false, true}) {
        for (const char* name :
             {"folder.bmp", "locked.bmp", "full.bmp", "none/a.bmp", "a.xyz", "a"}) {
            const FileSizeLimit limit(10'000);
            const QString error = TextOf<imaging::WriteError>(
                [&] { data.SaveImage(image, folder, QLatin1StringView(name), scale); });
            EXPECT_TRUE(error.contains(Saved(name))) << name << ": " << qPrintable(error);
            EXPECT_EQ(image.Photo().Size(), QSize(600, 750)) << name;
            EXPECT_EQ(image.UndoCount(), 1) << name;
            EXPECT_TRUE(image.AutomaticUndo()) << name;
        }
    }
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_EQ(QFileInfo(Saved("full.bmp")).size(), 3);
    EXPECT_EQ(QFileInfo(Saved("locked.bmp")).size(), 3);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 2) << "no half-written file is left";
    image.Undo();
    EXPECT_EQ(FirstPixel(), qRgb(255, 0, 0));
}

TEST_F(PhotoSaving, TheAutomaticSaveWithoutANameWritesNothing) {
    data.AutoSaveImage(image, folder);
    EXPECT_TRUE(QDir(folder).isEmpty());
}

}  // namespace kadrona::testing
