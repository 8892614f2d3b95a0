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

/// A photo of 600 x 750 pixels, red and then green.
class PhotoSaving : public ::testing::Test {
 protected:
    PhotoSaving() {
        data.SetSettings(&settings);
        data.SetCurrentFile(u"/photos/max.png"_s);
        QDir().mkpath(folder);
        image.Open(Filled(Qt::red), {300});
        image.ChangePhoto(Filled(Qt::green));
    }

    static imaging::Pixels Filled(Qt::GlobalColor colour, int columns = 1, int rows = 1) {
        QImage image(600, 750, QImage::Format_RGB32);
        image.fill(colour);
        return {image, columns, rows};
    }

    QString Saved(const char* name) const { return folder + u'/' + QLatin1StringView(name); }
    void Save(const char* name, bool scale = false) {
        data.SaveImage(image, folder, QLatin1StringView(name), scale);
    }
    static QColor ColourOf(const QString& file) { return QImage(file).pixelColor(0, 0); }
    QColor Colour() { return image.Photo().Tile().pixelColor(0, 0); }

    Installation installation;
    QString folder = installation.Path("saved");
    FakeSettings settings;
    imaging::LayeredImage image;
    WatchingInterface ui{image};
    core::TData data{ui, installation.Folders()};
};

TEST_F(PhotoSaving, QuicklyOverwritesWithoutAskingAndTakesTheLastChangeBack) {
    Save("Bildname.bmp");
    EXPECT_EQ(Colour(), QColor(Qt::red));
    EXPECT_FALSE(image.CanUndo());
    image.Open(Filled(Qt::blue), {300});
    data.SaveImage(image, folder + u'/', u"Bildname.bmp"_s, false);
    EXPECT_EQ(ColourOf(Saved("Bildname.bmp")), QColor(Qt::blue));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList(u"Bildname.bmp"_s));
    const QString message = u"Das Bild wurde unter "_s + Saved("Bildname.bmp") + u" gespeichert"_s;
    EXPECT_EQ(ui.messages, QStringList({message, message}));
    EXPECT_TRUE(ui.saveDialogs.isEmpty());
}

TEST_F(PhotoSaving, ScalesTheFileAndGivesThePhotoBack) {
    Save("a.jpg", true);
    const imaging::LoadedImage saved = imaging::ReadImageFile(Saved("a.jpg"));
    EXPECT_EQ(saved.pixels.Size(), QSize(413, 531));
    EXPECT_EQ(saved.resolution.value, 207) << "as wide on paper as 600 pixels at 300 dpi";
    EXPECT_EQ(ui.sizes, QList<QSize>({QSize(413, 531)})) << "taken back after the message";
    EXPECT_EQ(image.Photo().Size(), QSize(600, 750));
    EXPECT_EQ(image.Resolution().value, 300);
    EXPECT_EQ(Colour(), QColor(Qt::green)) << "only the scaling is undone";
    EXPECT_FALSE(image.CanUndo());
    EXPECT_TRUE(image.AutomaticUndo());
}

TEST_F(PhotoSaving, ByDialogProposesANameAndTakesTheFormatOfTheChosenOne) {
    data.SaveImage(image, folder, {}, false);
    EXPECT_TRUE(QDir(folder).isEmpty()) << "it was cancelled";
    EXPECT_EQ(data.LastSaveFolder(), QString());
    ui.saveFile = Saved("max.tif");
    data.SaveImage(image, folder + u'/', {}, false);
    ASSERT_EQ(ui.saveDialogs.size(), 2);
    const core::SaveDialog& dialog = ui.saveDialogs.last();
    EXPECT_EQ(dialog.title, u"Passbild speichern"_s);
    EXPECT_EQ(dialog.initialFolder, folder);
    EXPECT_EQ(dialog.fileName, u"max_kdr"_s);
    EXPECT_EQ(dialog.defaultExtension, u"jpg"_s);
    EXPECT_EQ(QImageReader::imageFormat(Saved("max.tif")), "tiff");
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_TRUE(image.CanUndo());
    EXPECT_EQ(Colour(), QColor(Qt::green));
}

TEST_F(PhotoSaving, TheFolderOfTheLastSaveStandsInForAMissingOne) {
    settings[u"ImageSaveDir"_s] = folder;
    EXPECT_EQ(data.SaveFolder(), folder);
    settings[u"ImageSaveDir"_s] = installation.Path("missing");
    EXPECT_EQ(data.SaveFolder(), QString());
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
    // With neither folder the root is meant, as in every path built on a missing folder.
    data.SaveImage(image, {}, Saved("root.bmp").mid(1), false);
    EXPECT_TRUE(QFile::exists(Saved("root.bmp")));
}

TEST_F(PhotoSaving, AFailureNamesTheFileAndChangesNothing) {
    installation.Write("saved/full.bmp", "old");
    for (const bool scale : {false, true}) {
        for (const char* name : {"full.bmp", "none/a.bmp", "a.xyz", "a"}) {
            const FileSizeLimit limit(10'000);
            const QString error = TextOf<imaging::WriteError>([&] { Save(name, scale); });
            EXPECT_TRUE(error.contains(Saved(name))) << name << ": " << qPrintable(error);
            EXPECT_EQ(image.Photo().Size(), QSize(600, 750)) << name;
            EXPECT_EQ(image.UndoCount(), 1) << name;
            EXPECT_TRUE(image.AutomaticUndo()) << name;
        }
    }
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_EQ(QFileInfo(Saved("full.bmp")).size(), 3);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 1) << "no half-written file is left";
    image.Undo();
    EXPECT_EQ(Colour(), QColor(Qt::red));
}

TEST_F(PhotoSaving, WritesTheArchivesTagsOnlyWhereTheProfileWantsThem) {
    data.SaveIptcToImage(image, u"Anna"_s, u"Anna,Berlin,"_s);
    for (const bool wanted : {true, false}) {
        settings[u"TagsInSavedFiles"_s] = wanted;
        Save("anna.jpg");
        EXPECT_EQ(imaging::ReadImageFile(Saved("anna.jpg")).iptc.IsEmpty(), !wanted);
    }
    EXPECT_FALSE(FakeSettings().TagsInUploadFiles());
}

}  // namespace kadrona::testing
