#include <gtest/gtest.h>

#include <cmath>

#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"
#include "imaging/document/LayeredImage.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class PassportPhotos : public ::testing::Test {
 protected:
    PassportPhotos() {
        data.SetSettings(&settings);
        data.InitSystem();
    }

    void OpenPhoto(const QImage& photo) {
        image.Open(imaging::Pixels(photo), {});
        ASSERT_TRUE(data.MaskLoadFromFile(data.GetMaskFileName(0)));
        data.DrawMask(image);
        data.LoadLayer(image);
    }
    void OpenGrey(int width, int height) {
        QImage photo(width, height, QImage::Format_RGB32);
        photo.fill(Qt::gray);
        OpenPhoto(photo);
    }

    Installation installation;
    FakeInterface ui;
    FakeSettings settings;
    core::TData data{ui, installation.Folders()};
    imaging::LayeredImage image;
};

TEST_F(PassportPhotos, CuttingStoresThePlaceForThatPhotoSize) {
    OpenGrey(1200, 1600);
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(0, 0, 350, 450)) << "in its own size at first";
    EXPECT_EQ(image.LayerAt(1).transparency, 60);
    EXPECT_EQ(image.CurrentLayer(), 1);
    image.SetLayerRectangle(1, QRect(100, 200, 600, 750));
    data.CropImage(image, core::SinglePhotoLayout);
    EXPECT_EQ(image.Photo().Size(), QSize(600, 750));
    EXPECT_EQ(image.LayerCount(), 1);
    EXPECT_EQ(data.ReadLayerPosFromIni(u"Pass.msk 1200x1600"_s), QRect(100, 200, 600, 750));

    OpenGrey(1200, 1600);
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(100, 200, 600, 771))
        << "the height follows the template, not what was saved";
    OpenGrey(1600, 1200);
    EXPECT_EQ(image.LayerAt(1).rectangle.topLeft(), QPoint());
}

TEST_F(PassportPhotos, APlaceThatCannotBeStoredDoesNotCostThePhotos) {
    OpenGrey(1200, 1600);
    installation.Write("common/Kadrona/kdr.ini", "[old]\nPosX=1\n");
    QFile(installation.DataFile("kdr.ini")).setPermissions(QFile::ReadOwner);
    data.CropImage(image, 0);
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(image.Photo().Size(), QSize(4 * 375, 2 * 475));
    EXPECT_EQ(data.ReadLayerPosFromIni(u"old"_s).x(), 1);
}

TEST_F(PassportPhotos, TheSheetIsCutBorderedTurnedAndRepeated) {
    for (const auto& [layout, frame, sheet] :
         {std::tuple(1, 25, QSize(1314, 1112)), std::tuple(6, 25, QSize(413, 531)),
          std::tuple(7, -5, QSize(1239, 1593)), std::tuple(8, 25, QSize(438, 556))}) {
        OpenGrey(500, 600);
        image.SetLayerRectangle(1, QRect(10, 10, 413, 531));
        data.SetFrameSize(frame);
        data.CropImage(image, layout);
        EXPECT_EQ(image.Photo().Size(), sheet) << layout;
        EXPECT_EQ(image.Resolution().value, 300);
    }
    OpenGrey(500, 600);
    data.SetFrameSize(20'000);
    EXPECT_THROW(data.CropImage(image, 0), platform::Error) << "of somebody else's profile";
    EXPECT_EQ(image.Photo().Size(), QSize(500, 600));
    OpenPhoto(Picture({"rg-", "by-", "---"}));
    image.SetLayerRectangle(1, QRect(0, 0, 2, 2));
    data.SetFrameSize(2);
    settings[u"RotateBeforeTileImg"_s] = true;
    data.CropImage(image, 5);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"wwwwwwww",  //
                                                   "wgywwgyw",  //
                                                   "wrbwwrbw",  //
                                                   "wwwwwwww"})));
}

TEST_F(PassportPhotos, TheArchiveIsAskedOnlyWhereWantedAndNeverCostsTheSheet) {
    OpenGrey(500, 600);
    data.CropImage(image, 0);
    EXPECT_EQ(ui.tagEditorShown, 0);
    settings[u"ImageAutoSave"_s] = true;
    for (const int records : {0, 1}) {
        OpenGrey(500, 600);
        data.CropImage(image, 0);
        EXPECT_EQ(ui.tagEditorShown, records + 1);
        EXPECT_EQ(ui.messages.size(), records) << "there is no folder for the photo";
        EXPECT_EQ(data.Archive()->Ids().size(), size_t(records)) << "an empty record";
        EXPECT_EQ(image.Photo().Columns(), 4);
        ui.tags = QStringList(u"Anna"_s);
    }
    ui.answers = {true, true};
    OpenGrey(500, 600);
    data.CropImage(image, 0);
    EXPECT_EQ(ui.messages.size(), 4) << "tried again twice";
    EXPECT_TRUE(ui.messages.last().startsWith(u"In den Einstellungen ist kein"_s));
    EXPECT_TRUE(ui.messages.last().endsWith(u"Soll es noch einmal versucht werden?"_s));
    EXPECT_EQ(ui.tagEditorShown, 3) << "with the same tags";
    EXPECT_EQ(ui.offeredTags, QStringList()) << "not those of the cut before";
    EXPECT_EQ(data.Archive()->Ids().size(), 4U);

    core::TData late(ui, installation.Folders());
    late.SetSettings(&settings);
    late.MaskLoadFromFile(late.GetMaskFileName(0));
    OpenGrey(500, 600);
    ui.answers = {true};
    late.CropImage(image, 0);
    EXPECT_NE(late.Archive(), nullptr) << "opened for the second try";
}

TEST_F(PassportPhotos, AnEmptyFolderOfAnArchiveWithPhotosIsAskedAbout) {
    const QString folder = installation.Path("archive");
    settings[u"ImageAutoSave"_s] = true;
    settings[u"ImageDestinationDir"_s] = folder;
    ui.tags = QStringList(u"Anna"_s);
    const auto filedAnswering = [&](const QList<bool>& answers) {
        ui.answers = answers;
        OpenGrey(500, 600);
        data.CropImage(image, 0);
        return data.Archive()->Ids().size();
    };
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_EQ(filedAnswering({}), 1U) << "a new archive";
    ASSERT_TRUE(QDir().rename(folder, folder + u"-away"_s) && QDir().mkpath(folder));
    EXPECT_EQ(filedAnswering({false, false}), 1U);
    EXPECT_TRUE(ui.messages.last().contains(u"ist leer; ist sein Laufwerk verbunden?"_s));
    EXPECT_TRUE(QDir(folder).isEmpty());
    ASSERT_TRUE(QDir(folder).mkdir(u"lost+found"_s));
    EXPECT_EQ(filedAnswering({false, false}), 1U);
    EXPECT_TRUE(ui.messages.last().contains(u"wo das neueste Foto liegt"_s));
    EXPECT_EQ(filedAnswering({true}), 2U) << "a new folder";
    EXPECT_EQ(filedAnswering({}), 3U);
}

TEST_F(PassportPhotos, ATemplateLargerThanThePhotoKeepsItsSizeWithWhiteOutside) {
    OpenGrey(100, 100);
    data.CropImage(image, core::SinglePhotoLayout);
    EXPECT_EQ(image.Photo().Size(), QSize(350, 450));
    EXPECT_EQ(image.Photo().ToImage().pixel(349, 449), 0xffffffff);
    EXPECT_EQ(image.Resolution().value, 254);
}

TEST_F(PassportPhotos, ADamagedTemplateChangesNothing) {
    OpenGrey(500, 600);
    installation.Write("program/Schablonen/USA.msk", QByteArray("\x02\0\0\0only", 8));
    EXPECT_THROW(data.MaskLoadFromFile(data.GetMaskFileName(1)), core::TemplateFileError);
    EXPECT_EQ(data.TemplateName(), u"Pass.msk"_s);
    EXPECT_EQ(image.LayerCount(), 2);
    EXPECT_FALSE(data.MaskLoadFromFile(installation.Path("program/Schablonen/none.msk")));
}

TEST_F(PassportPhotos, BrightnessIsTheWholeThirdOfTheAverages) {
    QImage photo(7, 5, QImage::Format_RGB32);
    for (const auto& [colour, brightness] :
         {std::pair(qRgb(191, 191, 191), 191), std::pair(qRgb(190, 191, 191), 190)}) {
        photo.fill(colour);
        EXPECT_EQ(core::AverageBrightness(imaging::Pixels(photo)), brightness);
    }
}

TEST_F(PassportPhotos, AnOpenedPhotoIsTurnedAsTheSettingsSay) {
    for (const auto& [setting, turned] : {std::pair(u"ImgRotateLeft"_s, Picture({"g", "r"})),
                                          std::pair(u"ImgRotateRight"_s, Picture({"r", "g"}))}) {
        FakeSettings turning;
        turning[setting] = true;
        image.Open(imaging::Pixels(Picture({"rg"})), {});
        core::TurnOpenedPhoto(turning, image);
        EXPECT_TRUE(SamePixels(image.Photo(), turned)) << setting.toStdString();
    }
}

TEST_F(PassportPhotos, TheFreeRotationTurnsByTheAnswer) {
    data.RotateImage(image);
    EXPECT_TRUE(ui.rotationPreview.isEmpty()) << "there is no photo yet";
    image.Open(imaging::Pixels(Picture({"rgb", "wky"})), {});
    for (const std::optional<double> degrees : {std::optional<double>(), std::optional(0.0)}) {
        ui.rotation = degrees;
        data.RotateImage(image);
        EXPECT_EQ(ui.rotationPreview, QSize(300, 200));
        EXPECT_TRUE(SamePixels(image.Photo(), Picture({"rgb", "wky"})));
    }
    ui.rotation = 90.0;
    data.RotateImage(image);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"by", "gk", "rw"})));
}

TEST_F(PassportPhotos, ATungstenLampIsBalancedWhereTheSettingsSay) {
    QImage photo(300, 400, QImage::Format_RGB32);
    for (int y = 0; y < photo.height(); ++y) {
        for (int x = 0; x < photo.width(); ++x) {
            const bool isFace = std::hypot(x - 150, y - 200) < 75;
            const double light = 1 - 0.1 * y / photo.height();
            photo.setPixel(x, y,
                           isFace ? qRgb(238, 169, 106)
                                  : qRgb(int(220 * light), int(183 * light), int(128 * light)));
        }
    }
    image.Open(imaging::Pixels(photo), {});
    core::BalancePhoto(settings, image);
    EXPECT_TRUE(SamePixels(image.Photo(), photo)) << "it is switched off";
    settings[u"AutoWhiteBalance"_s] = true;
    core::BalancePhoto(settings, image);
    EXPECT_GT(qBlue(image.Photo().Tile().pixel(10, 10)), 128);
}

}  // namespace kadrona::testing
