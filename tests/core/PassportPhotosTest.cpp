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

    void OpenPhoto(const QImage& photo, int templateIndex = 0) {
        image.Open(imaging::Pixels(photo), {});
        ASSERT_TRUE(data.MaskLoadFromFile(data.GetMaskFileName(templateIndex)));
        data.DrawMask(image);
        data.LoadLayer(image);
    }

    static QImage Grey(int width, int height, int value = 128) {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(qRgb(value, value, value));
        return image;
    }

    Installation installation;
    FakeInterface ui;
    FakeSettings settings;
    core::TData data{ui, installation.Folders()};
    imaging::LayeredImage image;
};

TEST_F(PassportPhotos, ANewTemplateStartsAtTheTopLeftInItsOwnSize) {
    OpenPhoto(Grey(1200, 1600));
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(0, 0, 350, 450));
    EXPECT_EQ(image.LayerAt(1).transparency, 60);
    EXPECT_EQ(image.CurrentLayer(), 1);
}

TEST_F(PassportPhotos, CuttingStoresThePlaceForThatPhotoSize) {
    OpenPhoto(Grey(1200, 1600));
    image.SetLayerRectangle(1, QRect(100, 200, 600, 750));
    data.CropImage(image, core::SinglePhotoLayout);
    EXPECT_EQ(image.Photo().Size(), QSize(600, 750));
    EXPECT_EQ(image.LayerCount(), 1);
    EXPECT_EQ(data.ReadLayerPosFromIni(u"Pass.msk 1200x1600"_s), QRect(100, 200, 600, 750));

    OpenPhoto(Grey(1200, 1600));
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(100, 200, 600, 771))
        << "the height follows the template, not what was saved";
    OpenPhoto(Grey(1600, 1200));
    EXPECT_EQ(image.LayerAt(1).rectangle.topLeft(), QPoint());
}

TEST_F(PassportPhotos, APlaceThatCannotBeStoredDoesNotCostThePhotos) {
    OpenPhoto(Grey(1200, 1600));
    installation.Write("common/Kadrona/kdr.ini", "[old]\nPosX=1\n");
    QFile(installation.DataFile("kdr.ini")).setPermissions(QFile::ReadOwner);
    data.CropImage(image, 0);
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(image.Photo().Size(), QSize(4 * 375, 2 * 475));
    EXPECT_EQ(data.ReadLayerPosFromIni(u"old"_s).x(), 1);
}

struct SheetCase {
    int layout;
    int frameSize;
    QSize sheet;
};

class Sheets : public PassportPhotos, public ::testing::WithParamInterface<SheetCase> {};

TEST_P(Sheets, AreTheGridOfTheBorderedPhotos) {
    OpenPhoto(Grey(500, 600));
    image.SetLayerRectangle(1, QRect(10, 10, 413, 531));
    data.SetFrameSize(GetParam().frameSize);
    data.CropImage(image, GetParam().layout);
    EXPECT_EQ(image.Photo().Size(), GetParam().sheet);
    EXPECT_EQ(image.Resolution().value, 300);
}

INSTANTIATE_TEST_SUITE_P(
    PassportPhotos, Sheets,
    ::testing::Values(SheetCase{0, 25, {1752, 1112}}, SheetCase{1, 25, {1314, 1112}},
                      SheetCase{2, 25, {876, 1112}}, SheetCase{3, 25, {1752, 556}},
                      SheetCase{4, 25, {1314, 556}}, SheetCase{5, 25, {876, 556}},
                      SheetCase{6, 25, {413, 531}}, SheetCase{7, 25, {1314, 1668}},
                      SheetCase{0, 0, {1652, 1062}}, SheetCase{0, -5, {1652, 1062}},
                      SheetCase{-1, 25, {438, 556}}, SheetCase{8, 25, {438, 556}}));

TEST_F(PassportPhotos, TheSheetIsCutBorderedTurnedAndRepeated) {
    QImage photo = Picture({"rg-", "by-", "---"});
    OpenPhoto(photo);
    image.SetLayerRectangle(1, QRect(0, 0, 2, 2));
    data.SetFrameSize(2);
    settings[u"RotateBeforeTileImg"_s] = true;
    data.CropImage(image, 5);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"wwwwwwww",  //
                                                   "wgywwgyw",  //
                                                   "wrbwwrbw",  //
                                                   "wwwwwwww"})));
}

TEST_F(PassportPhotos, TheTagEditorIsShownOnlyForTheArchiveAndCancellingStillMakesTheSheet) {
    OpenPhoto(Grey(500, 600));
    data.CropImage(image, 0);
    EXPECT_EQ(ui.tagEditorShown, 0);
    settings[u"ImageAutoSave"_s] = true;
    OpenPhoto(Grey(500, 600));
    data.CropImage(image, 0);
    EXPECT_EQ(ui.tagEditorShown, 1);
    EXPECT_EQ(image.Photo().Columns(), 4);
}

TEST_F(PassportPhotos, AnArchiveThatFailsIsToldOfAndStillMakesTheSheet) {
    settings[u"ImageAutoSave"_s] = true;
    ui.tags = QStringList(u"Anna"_s);
    OpenPhoto(Grey(500, 600));
    data.CropImage(image, 0);
    EXPECT_EQ(data.Archive()->Ids().size(), 1U) << "no folder for the photo of the empty record";
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(image.Photo().Columns(), 4);
}

TEST_F(PassportPhotos, ATemplateLargerThanThePhotoKeepsItsSizeWithWhiteOutside) {
    OpenPhoto(Grey(100, 100));
    data.CropImage(image, core::SinglePhotoLayout);
    EXPECT_EQ(image.Photo().Size(), QSize(350, 450));
    EXPECT_EQ(image.Photo().ToImage().pixel(349, 449), 0xffffffff);
    EXPECT_EQ(image.Resolution().value, 254);
}

TEST_F(PassportPhotos, ADamagedTemplateChangesNothing) {
    OpenPhoto(Grey(500, 600));
    installation.Write("program/Schablonen/USA.msk", QByteArray("\x02\0\0\0only", 8));
    EXPECT_THROW(data.MaskLoadFromFile(data.GetMaskFileName(1)), core::TemplateFileError);
    EXPECT_EQ(data.TemplateName(), u"Pass.msk"_s);
    EXPECT_EQ(image.LayerCount(), 2);
    EXPECT_FALSE(data.MaskLoadFromFile(installation.Path("program/Schablonen/none.msk")));
}

TEST_F(PassportPhotos, BrightnessIsTheWholeThirdOfTheAverages) {
    EXPECT_EQ(core::AverageBrightness(imaging::Pixels(Grey(7, 5, 191))), 191);
    QImage colour(1, 1, QImage::Format_RGB32);
    colour.fill(qRgb(190, 191, 191));
    EXPECT_EQ(core::AverageBrightness(imaging::Pixels(colour)), 190);
}

TEST_F(PassportPhotos, AnOpenedPhotoIsTurnedAsTheSettingsSay) {
    image.Open(imaging::Pixels(Picture({"rg"})), {});
    settings[u"ImgRotateLeft"_s] = true;
    core::TurnOpenedPhoto(settings, image);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"g", "r"})));
    image.Open(imaging::Pixels(Picture({"rg"})), {});
    settings[u"ImgRotateLeft"_s] = false;
    settings[u"ImgRotateRight"_s] = true;
    core::TurnOpenedPhoto(settings, image);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"r", "g"})));
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
