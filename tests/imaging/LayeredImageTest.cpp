#include <stdexcept>

#include "imaging/document/LayeredImage.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/FreeRotation.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

class LayeredImageTest : public ::testing::Test {
 protected:
    LayeredImageTest() {
        QObject::connect(&image, &LayeredImage::PhotoChanged, [this] { ++photoSignals; });
        QObject::connect(&image, &LayeredImage::LayersChanged, [this] { ++layerSignals; });
    }

    /// Expects so many signals since the last call.
    void ExpectSignals(int photo, int layers, const char* after) {
        EXPECT_EQ(std::exchange(photoSignals, 0), photo) << "PhotoChanged after " << after;
        EXPECT_EQ(std::exchange(layerSignals, 0), layers) << "LayersChanged after " << after;
    }

    LayeredImage image;
    Pixels photo{Picture({"rgb", "ykw"})};
    Layer mask{Pixels(Picture({"k"})), QRect(0, 0, 1, 1)};

 private:
    int photoSignals = 0;
    int layerSignals = 0;
};

}  // namespace

TEST_F(LayeredImageTest, SignalsExactlyWhenSomethingChanges) {
    image.Clear();
    image.Undo();
    image.RecordUndoStep();
    ExpectSignals(0, 0, "nothing on an empty image");
    image.Open(photo, {300});
    ExpectSignals(1, 1, "opening");
    image.Open(photo, {300});
    ExpectSignals(1, 0, "opening over a photo alone");
    EXPECT_EQ(image.AddLayer(mask), 1);
    EXPECT_EQ(image.CurrentLayer(), 1);
    ExpectSignals(0, 1, "adding a layer");
    image.SetCurrentLayer(1);
    image.SetLayerRectangle(1, mask.rectangle);
    image.SetLayerVisible(1, true, true);
    image.SetResolution({600});
    ExpectSignals(0, 0, "setting what is set");
    image.SetCurrentLayer(0);
    image.SetLayerRectangle(1, {1, 0, 2, 2});
    image.SetLayerVisible(1, false, true);
    ExpectSignals(0, 3, "changing layers");
    image.ChangePhoto(photo);
    ExpectSignals(0, 0, "changing to the same pixels");
    image.ChangePhoto(Pixels(Picture({"kkk"})));
    ExpectSignals(1, 0, "changing the photo");
    image.Undo();
    ExpectSignals(1, 0, "undoing a change");
    image.RecordUndoStep();
    image.Undo();
    ExpectSignals(0, 0, "undoing no change");
    image.EditPhoto({0, 0, 1, 1}, [](QImage& tile) { tile.setPixel(0, 0, ColourOf('g')); });
    image.EditPhoto({3, 0, 1, 1}, [](QImage&) { FAIL() << "beside the photo"; });
    ExpectSignals(1, 0, "an edit");
    image.RemoveLayersAbovePhoto();
    ExpectSignals(0, 1, "removing layers");
    image.RemoveLayersAbovePhoto();
    ExpectSignals(0, 0, "removing no layers");
    image.Clear();
    ExpectSignals(1, 1, "clearing");
}

TEST_F(LayeredImageTest, RefusesLayersThatDoNotExist) {
    EXPECT_THROW(image.SetCurrentLayer(0), std::out_of_range);
    EXPECT_THROW(image.ChangePhoto(photo), std::out_of_range);
    EXPECT_THROW(image.AddLayer(mask), std::out_of_range);
    image.Open(photo, {});
    EXPECT_THROW(image.SetCurrentLayer(1), std::out_of_range);
    EXPECT_THROW(image.SetCurrentLayer(-1), std::out_of_range);
    EXPECT_THROW(image.SetLayerRectangle(0, {}), std::out_of_range);
    EXPECT_THROW(image.SetLayerVisible(1, true, true), std::out_of_range);
    EXPECT_THROW(image.ChangePhoto({}), std::invalid_argument);
}

TEST_F(LayeredImageTest, UndoRestoresPixelsSizeAndResolution) {
    image.Open(photo, {300});
    image.AddLayer(mask);
    image.RecordUndoStep();
    image.SetResolution({600});
    image.ChangePhoto(Cropped(photo, {1, 0, 2, 2}));
    EXPECT_EQ(image.LayerAt(0).rectangle, QRect(0, 0, 2, 2));
    image.Undo();
    EXPECT_TRUE(SamePixels(image.Photo(), photo.ToImage()));
    EXPECT_EQ(image.LayerAt(0).rectangle, QRect(0, 0, 3, 2));
    EXPECT_EQ(image.Resolution(), DotsPerInch{300});
    EXPECT_EQ(image.LayerCount(), 2);
    EXPECT_FALSE(image.CanUndo());
}

TEST_F(LayeredImageTest, UndoingATurnPutsLayersBack) {
    image.Open(Pixels(Picture({"rg", "by"})), {});
    image.AddLayer(mask);
    int turns = 0;
    QObject::connect(&image, &LayeredImage::PhotoTurned, [&] { ++turns; });
    image.RecordUndoStep();
    image.SetLayerRectangle(1, {1, 0, 1, 1});
    image.TurnPhoto(90);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"gy", "rb"})));
    image.SetLayerRectangle(1, {0, 1, 1, 1});
    image.ChangePhoto(Pixels(Picture({"kkk"})));
    image.Undo();
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(0, 1, 1, 1)) << "no turn was undone";
    EXPECT_EQ(turns, 1);
    image.Undo();
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(1, 0, 1, 1));
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"rg", "by"})));
    EXPECT_EQ(turns, 2);
    image.TurnPhoto(90);
    image.RemoveLayersAbovePhoto();
    image.AddLayer({Pixels(Picture({"w"})), QRect(0, 0, 2, 2)});
    image.Undo();
    EXPECT_EQ(image.LayerAt(1).rectangle, QRect(0, 0, 2, 2)) << "another layer";
}

TEST_F(LayeredImageTest, ARowOfTurnsSoftensOnce) {
    const QImage noise = TestPicture(60, 40);
    image.Open(Pixels(noise), {});
    for (int i = 0; i < 6; ++i) {
        image.TurnPhoto(2);
    }
    EXPECT_TRUE(SamePixels(image.Photo(), Rotated(Pixels(noise), 12).ToImage()));
    image.Undo();
    image.TurnPhoto(-10);
    EXPECT_TRUE(SamePixels(image.Photo(), noise)) << "after an undo";
    image.TurnPhoto(2);
    image.ChangePhoto(Pixels(image.Photo().ToImage().copy()));
    const QImage changed = image.Photo().ToImage();
    image.TurnPhoto(2);
    EXPECT_TRUE(SamePixels(image.Photo(), Rotated(Pixels(changed), 2).ToImage()));
}

TEST_F(LayeredImageTest, RecordsByItselfOnlyWhenAsked) {
    image.Open(photo, {});
    image.SetAutomaticUndo(false);
    image.ChangePhoto(Pixels(Picture({"k"})));
    EXPECT_FALSE(image.CanUndo());
    image.SetAutomaticUndo(true);
    image.SetUndoLimit(1);
    image.ChangePhoto(Pixels(Picture({"r"})));
    image.ChangePhoto(Pixels(Picture({"g"})));
    EXPECT_EQ(image.UndoCount(), 1);
    image.Open(photo, {});
    EXPECT_FALSE(image.CanUndo());
}

}  // namespace kadrona::imaging
