#include <stdexcept>
#include <vector>

#include "imaging/document/LayeredImage.h"
#include "imaging/document/UndoHistory.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/FreeRotation.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

constexpr DotsPerInch Resolution{300};

/// 4 x 3 blocks, the last ones cut by the picture's edge.
constexpr QSize PhotoSize(1000, 700);
constexpr qsizetype PhotoBytes = qsizetype{1000} * 700 * 4;
constexpr qsizetype BlockBytes = qsizetype{256} * 256 * 4;

/// In memory of its own.
Pixels Plain(QRgb colour, QSize size = PhotoSize) {
    return Pixels(Filled(size, colour));
}

/// A photo that differs from `photo` in one pixel, in memory of its own.
Pixels Dotted(const Pixels& photo, QPoint position, QRgb colour) {
    QImage image = photo.ToImage().copy();
    image.setPixel(position, colour);
    return Pixels(image);
}

/// A live photo whose every state is recorded before it changes.
struct RecordedPhoto {
    explicit RecordedPhoto(UndoHistory& undo) : history(undo) {}

    void Change(Pixels changed) {
        history.Record(photo, Resolution);
        states.push_back(photo.ToImage().copy());
        photo = std::move(changed);
    }

    void Undo() {
        DotsPerInch resolution;
        history.TakeNewest(photo, resolution);
    }

    /// Goes back through all steps and compares each state.
    void ExpectAllStatesBack(int count) {
        ASSERT_EQ(history.Count(), count);
        for (int step = 1; step <= count; ++step) {
            Undo();
            EXPECT_TRUE(SamePixels(photo, states[states.size() - size_t(step)]))
                << step << " steps back";
        }
        EXPECT_TRUE(history.IsEmpty());
        EXPECT_EQ(history.ByteCount(photo), 0);
    }

    UndoHistory& history;
    Pixels photo = Plain(0xff102030);
    std::vector<QImage> states;
};

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

TEST(UndoHistory, KeepsOnlyTheBlocksThatDiffer) {
    UndoHistory history;
    RecordedPhoto live(history);
    const std::vector<QPoint> positions = {{0, 0}, {999, 699}, {300, 300}, {255, 256}, {300, 301}};
    for (const QPoint position : positions) {
        live.Change(Dotted(live.photo, position, 0xffffffff));
    }
    // The change after the last recording is not yet found.
    EXPECT_GE(history.ByteCount(live.photo), PhotoBytes);
    live.Change(Dotted(live.photo, {1, 1}, 0xffff0000));
    history.Record(live.photo, Resolution);
    live.states.push_back(live.photo.ToImage());
    const qsizetype cornerBytes = qsizetype{1000 - 768} * (700 - 512) * 4;
    EXPECT_EQ(history.ByteCount(live.photo), 5 * BlockBytes + cornerBytes);
    live.ExpectAllStatesBack(7);

    // Whole pictures where all or the size changes.
    live.Change(Plain(0xff00ff00));
    live.Change(Dotted(live.photo, {700, 10}, 0xffff0000));
    live.Change(Plain(0xff00ff00, {300, 200}));
    live.Change(Pixels(live.photo.Tile(), 2, 1));
    live.Change(Plain(0xff00ff00, {600, 200}));
    live.ExpectAllStatesBack(5);
}

TEST(UndoHistory, RecordsPixelsOnceAndCountsNoneThatTheLivePhotoKeepsAlive) {
    UndoHistory history;
    const Pixels whole = Plain(0xff00ff00);
    history.Record(whole, Resolution);
    history.Record(whole, {600});
    EXPECT_EQ(history.Count(), 1);
    EXPECT_EQ(history.ByteCount(whole), 0);
    const QImage& image = whole.Tile();
    const Pixels part(
        QImage(image.constScanLine(100), 1000, 50, image.bytesPerLine(), image.format()));
    EXPECT_EQ(history.ByteCount(part), 0);
    EXPECT_EQ(history.ByteCount(Plain(0)), PhotoBytes);
    history.Record(Plain(0xff00ff00), Resolution);
    EXPECT_EQ(history.Count(), 1) << "equal pixels in other memory";
    history.Record(Dotted(whole, {999, 0}, 0), Resolution);
    EXPECT_EQ(history.Count(), 2);
}

TEST(UndoHistory, FollowsChangesThatWereNotRecorded) {
    UndoHistory history;
    RecordedPhoto live(history);
    const Pixels first = live.photo;
    live.Change(Dotted(first, {0, 0}, 0));
    live.Change(Dotted(live.photo, {500, 0}, 0));
    live.Undo();
    // Changed since the undo: the older step must not be applied to this.
    live.photo = Dotted(live.photo, {999, 699}, 0);
    const QImage third = live.photo.ToImage();
    live.Change(Plain(0));
    live.Undo();
    EXPECT_TRUE(SamePixels(live.photo, third));
    live.photo = Plain(0);
    live.Undo();
    EXPECT_TRUE(SamePixels(live.photo, first.ToImage()));
}

TEST(UndoHistory, DropsTheOldestBeyondTheLimitOrTheBudget) {
    UndoHistory history(3);
    RecordedPhoto live(history);
    for (int x = 0; x < 5; ++x) {
        live.Change(Dotted(live.photo, {x, 0}, 0));
    }
    EXPECT_EQ(history.Count(), 3);
    history.SetLimit(2);
    live.ExpectAllStatesBack(2);
    history.SetLimit(0);
    history.Record(live.photo, Resolution);
    EXPECT_TRUE(history.IsEmpty());

    // As many as fit beside the photo, and the newest, recorded when it was it.
    for (const auto& [photos, kept] : {std::pair(2, 3), {0, 1}}) {
        UndoHistory few(10, photos * PhotoBytes);
        RecordedPhoto other(few);
        for (int red = 0; red < 5; ++red) {
            other.Change(Plain(qRgb(red, 0, 0)));
        }
        other.ExpectAllStatesBack(kept);
    }
}

TEST(UndoHistory, KeepsOnlyTouchedBlocksOfAnEditInPlace) {
    UndoHistory history;
    RecordedPhoto live(history);
    const uchar* memory = live.photo.Tile().constBits();
    const auto stroke = [&](QPoint from) {
        live.Change(live.photo);
        // Two dabs on overlapping blocks.
        for (const int offset : {0, 10}) {
            const QRect dab(from + QPoint(offset, 0), QSize(20, 20));
            history.EditInPlace(live.photo, dab, [&](QImage& image) {
                for (int x = dab.left(); x <= dab.right(); ++x) {
                    image.setPixel(x, dab.top(), qRgb(x % 256, 0, 0));
                }
            });
        }
    };
    stroke({100, 100});
    EXPECT_EQ(history.ByteCount(live.photo), BlockBytes);
    stroke({240, 100});
    EXPECT_EQ(history.ByteCount(live.photo), 3 * BlockBytes);
    EXPECT_EQ(live.photo.Tile().constBits(), memory) << "the photo was copied";
    live.ExpectAllStatesBack(2);
    EXPECT_EQ(live.photo.Tile().constBits(), memory) << "undo copied the photo";
}

TEST_F(LayeredImageTest, KnowsWhatWasDoneToThePhotoAndWhatWasUndone) {
    image.Open(photo, {});
    const int opened = image.Edits().geometry;
    image.ChangePhoto(Pixels(Picture({"k"})), PhotoEdit::Tone);
    image.ChangePhoto(Pixels(Picture({"r"})), PhotoEdit::Colours);
    image.RecordUndoStep();
    image.EditPhoto({0, 0, 1, 1}, [](QImage& pixels) { pixels.fill(Qt::blue); });
    EXPECT_EQ(image.Edits(), (PhotoEdits{true, true, true, opened}));
    image.Undo();
    EXPECT_EQ(image.Edits(), (PhotoEdits{true, true, false, opened}));
    image.Undo();
    EXPECT_EQ(image.Edits(), (PhotoEdits{.tone = true, .geometry = opened}));
    image.TurnPhoto(90);
    EXPECT_NE(image.Edits().geometry, opened);
    image.Undo();
    EXPECT_EQ(image.Edits().geometry, opened);
    image.Open(photo, {});
    EXPECT_NE(image.Edits().geometry, opened);
    EXPECT_FALSE(image.Edits().Any());
}

}  // namespace kadrona::imaging
