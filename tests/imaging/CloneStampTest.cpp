#include <cmath>
#include <limits>

#include "WriterFixture.h"
#include "imaging/retouch/CloneStamp.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

/// Covers exactly the pixel under it.
const Brush OnePixel{1, 0};

QPointF Middle(int x, int y = 0) {
    return {x + 0.5, y + 0.5};
}

}  // namespace

class CloneStampTest : public ::testing::Test {
 protected:
    void Open(const QImage& photo) {
        image_.Open(Pixels(photo.copy()), {300});
        stamp_.Reset();
    }

    void Stroke(const QList<QPointF>& way, const Brush& brush = OnePixel) {
        EXPECT_TRUE(stamp_.BeginStroke(way.front(), brush));
        for (const QPointF& position : way) {
            stamp_.ContinueStroke(position);
        }
        stamp_.EndStroke();
    }

    QImage Photo() const { return image_.Photo().ToImage(); }

    LayeredImage image_;
    CloneStamp stamp_{image_};
};

TEST(Coverage, FallsFromTheMiddleToTheEdge) {
    const struct {
        Brush brush;
        double distance;
        double expected;
    } cases[] = {{{40, 0}, 0, 1},    {{40, 0}, 19.4, 1},   {{40, 0}, 20, 0.5},
                 {{40, 0}, 20.6, 0}, {{40, 1}, 0, 1},      {{40, 1}, 10, 0.5},
                 {{40, 1}, 20, 0},   {{40, 0.5}, 9.9, 1},  {{40, 0.5}, 15, 0.5},
                 {{40, 0.5}, 20, 0}, {{1, 0}, 0, 1},       {{1, 0}, 1, 0},
                 {{-3, 9}, 0, 1},    {{1e9, 0}, 999.4, 1}, {{1e9, 0}, 1001, 0}};
    for (const auto& example : cases) {
        EXPECT_NEAR(Coverage(example.brush, example.distance), example.expected, 1e-9)
            << example.brush.diameter << ", " << example.brush.softness << " at "
            << example.distance;
    }
}

TEST_F(CloneStampTest, CopiesThePhotoAsItWasAndNothingFromOutside) {
    const double huge = std::numeric_limits<double>::max();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* name;
        QPointF source;
        QList<QPointF> way;
        const char* stamped;  // of "rgbykw"
    } rows[] = {
        {"over its own source", Middle(0), {Middle(1), Middle(5)}, "rrgbyk"},
        {"back and forth", Middle(1), {Middle(0), Middle(2), Middle(1), Middle(4)}, "gbykww"},
        {"the source ends", Middle(4), {Middle(2), {nan, nan}, Middle(5)}, "rgkwkw"},
        {"enters and leaves", Middle(0), {Middle(-1), {1e12, 0.5}}, "gbykww"},
        {"farther away than the photo is long",
         Middle(0),
         {{-huge, 0.5}, {huge, 0.5}, {huge, -huge}, {-huge, huge}},
         "rgbykw"},
    };
    for (const auto& row : rows) {
        Open(Picture({"rgbykw"}));
        stamp_.TakeSource(row.source);
        Stroke(row.way);
        EXPECT_TRUE(SamePixels(Photo(), Picture({row.stamped}))) << row.name;
        EXPECT_EQ(image_.UndoCount(), row.stamped == std::string_view("rgbykw") ? 0 : 1);
    }
}

TEST_F(CloneStampTest, KeepsTheOffsetForLaterStrokes) {
    Open(Picture({"rgbykw", "wwwwww", "kkkkkk"}));
    EXPECT_FALSE(stamp_.HasSource());
    EXPECT_FALSE(stamp_.SourceFor(Middle(3, 1)));
    stamp_.TakeSource(Middle(1, 0));
    EXPECT_EQ(stamp_.SourceFor(Middle(5, 2)), Middle(1, 0)) << "not yet aligned";
    Stroke({Middle(2, 1)});
    EXPECT_EQ(stamp_.SourceFor(Middle(5, 2)), Middle(4, 1));
    Stroke({Middle(5, 1)});
    EXPECT_TRUE(SamePixels(Photo(), Picture({"rgbykw", "wwgwwk", "kkkkkk"})));

    stamp_.TakeSource(Middle(0, 0));
    Stroke({Middle(5, 2)});
    EXPECT_EQ(stamp_.SourceFor(Middle(5, 2)), Middle(0, 0));
    EXPECT_TRUE(SamePixels(Photo(), Picture({"rgbykw", "wwgwwk", "kkkkkr"})));
}

TEST_F(CloneStampTest, CoversTheSameWhateverTheSpeed) {
    const QImage photo = TestPicture(400, 300);
    const Brush soft{60, 0.8};
    Open(photo);
    stamp_.TakeSource({50, 60});
    Stroke({{150, 120}, {330, 220}}, soft);
    const QImage fast = Photo();
    EXPECT_NE(fast.pixel(240, 170), photo.pixel(240, 170)) << "no gap between the positions";

    Open(photo);
    stamp_.TakeSource({50, 60});
    ASSERT_TRUE(stamp_.BeginStroke({150, 120}, soft));
    for (int pass = 0; pass < 3; ++pass) {
        for (int step = 0; step <= 90; ++step) {
            const double part = (pass % 2 == 0 ? step : 90 - step) / 90.0;
            stamp_.ContinueStroke(QPointF(150, 120) + part * QPointF(180, 100));
        }
    }
    stamp_.EndStroke();
    EXPECT_LE(LargestDifference(Photo(), fast), 1) << "slow, and three times over the same way";
}

TEST_F(CloneStampTest, MixesBySoftness) {
    Open(Painted({100, 40}, [](int x, int) { return ColourOf(x < 40 ? 'k' : 'w'); }));
    const Brush soft{30, 1};
    stamp_.TakeSource(Middle(19, 20));
    Stroke({Middle(70, 20)}, soft);
    for (int distance = 0; distance < 16; ++distance) {
        const int expected = qRound(255 - 255 * Coverage(soft, distance));
        EXPECT_NEAR(qRed(Photo().pixel(70 + distance, 20)), expected, 1) << distance;
        EXPECT_NEAR(qRed(Photo().pixel(70, 20 - distance)), expected, 1) << distance;
    }
}

TEST_F(CloneStampTest, MakesEachStrokeOneUndoStepOfTheBlocksItTouched) {
    const QImage photo = TestPicture(2000, 1500);
    Open(photo);
    image_.RecordUndoStep();  // as turning the tool on does
    const uchar* const memory = image_.Photo().Tile().constBits();
    stamp_.TakeSource({100, 100});
    for (int stroke = 0; stroke < 5; ++stroke) {
        const double x = 300 + 300 * stroke;
        Stroke({{x, 600}, {x + 40, 620}, {x, 640}}, {40, 0.5});
    }
    EXPECT_EQ(image_.UndoCount(), 5);
    EXPECT_EQ(image_.Photo().Tile().constBits(), memory) << "the photo was never copied";
    constexpr qsizetype BlockBytes = qsizetype{256} * 256 * 4;
    EXPECT_LE(image_.UndoByteCount(), BlockBytes * 5 * 4);
    for (int step = 0; step < 5; ++step) {
        EXPECT_FALSE(SamePixels(Photo(), photo));
        image_.Undo();
    }
    EXPECT_TRUE(SamePixels(Photo(), photo));
    EXPECT_EQ(image_.UndoCount(), 0);

    // A diagonal across the photo: its box would be everything.
    Stroke({{0, 0}, {2000, 1500}}, {20, 0.5});
    EXPECT_LE(image_.UndoByteCount(), 24 * BlockBytes) << "of 48";
    image_.Undo();
    EXPECT_TRUE(SamePixels(Photo(), photo));

    // Over equal pixels, but for one that the brush reaches in the end.
    QImage plain = Filled({100, 100}, ColourOf('-'));
    plain.setPixel(90, 50, 0xffff0000);
    Open(plain);
    stamp_.TakeSource({10, 50});
    Stroke({{30, 50}, {60, 50}}, {10, 0.5});
    EXPECT_EQ(image_.UndoCount(), 0) << "it changed nothing";
    Stroke({{30, 50}, {90, 50}}, {10, 0.5});
    EXPECT_EQ(image_.UndoCount(), 1);
}

TEST_F(CloneStampTest, WorksOnTheSmallestPhotoAGridAndNone) {
    EXPECT_FALSE(stamp_.BeginStroke(Middle(0), OnePixel)) << "no photo";
    Open(Picture({"r"}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const QPointF outside : {QPointF(-0.1, 0), {1, 0}, {0, 1}, {nan, 0}}) {
        stamp_.TakeSource(outside);
        EXPECT_FALSE(stamp_.HasSource() || stamp_.BeginStroke(Middle(0), OnePixel));
    }
    stamp_.ContinueStroke(Middle(1));
    stamp_.EndStroke();
    EXPECT_EQ(image_.UndoCount(), 0);
    stamp_.TakeSource(Middle(0));
    EXPECT_FALSE(stamp_.BeginStroke({nan, 0}, OnePixel));
    Stroke({Middle(0), Middle(9), {-2000, 2000}}, {2000, 1});
    EXPECT_TRUE(SamePixels(Photo(), Picture({"r"})));

    image_.Open(Pixels(Picture({"rg"}), 3, 1), {300});
    stamp_.TakeSource(Middle(0));
    Stroke({Middle(3)});
    EXPECT_TRUE(SamePixels(Photo(), Picture({"rgrrrg"}))) << "one copy of the sheet alone";
}

TEST_F(CloneStampTest, EndsTheStrokeWhenThePhotoIsAnother) {
    Open(Picture({"rgbykw"}));
    stamp_.TakeSource(Middle(0));
    ASSERT_TRUE(stamp_.BeginStroke(Middle(1), OnePixel));
    image_.Undo();
    stamp_.ContinueStroke(Middle(5));
    EXPECT_TRUE(SamePixels(Photo(), Picture({"rgbykw"})));
    ASSERT_TRUE(stamp_.BeginStroke(Middle(1), OnePixel));
    image_.Open(Pixels(Picture({"w"})), {300});
    stamp_.ContinueStroke(Middle(5));
    EXPECT_TRUE(SamePixels(Photo(), Picture({"w"})));
}

}  // namespace kadrona::imaging
