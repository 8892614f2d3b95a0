#include <gtest/gtest.h>

#include "imaging/view/ScaledPixels.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging::view {
namespace {

using namespace kadrona::testing;

QImage Drawn(const Pixels& pixels, QSize size, Quality quality = Quality::Smooth,
             Enlargement enlargement = Enlargement::Crisp) {
    ScaledPixels scaled(enlargement);
    scaled.Draw(pixels, size, QRect(QPoint(0, 0), size), quality);
    return scaled.Drawing().copy();
}

QImage Row(std::initializer_list<QRgb> colours) {
    return Painted({static_cast<int>(colours.size()), 1},
                   [&](int x, int) { return colours.begin()[x]; });
}

TEST(ScaledPixels, ALargePictureIsPreparedInSteps) {
    // Pairs of columns whose mean is another colour than each of them.
    const Pixels photo(Painted(
        {8192, 4096}, [](int x, int) { return x % 2 == 0 ? qRgb(100, 0, 0) : qRgb(0, 0, 100); }));
    ScaledPixels scaled(Enlargement::Crisp);
    const auto draw = [&](QSize size) {
        scaled.Draw(photo, size, QRect({}, size), Quality::Smooth);
    };
    const auto isMean = [&] { return scaled.Drawing().pixel(200, 100) == qRgb(50, 0, 50); };
    draw({512, 256});
    EXPECT_TRUE(scaled.IsProvisional());
    EXPECT_FALSE(isMean());
    int steps = 1;
    while (!scaled.Prepare(photo)) {
        ++steps;
        draw({512, 256});
        ASSERT_LT(steps, 100);
    }
    EXPECT_GE(steps, 4) << "a step builds what takes a few milliseconds";
    draw({512, 256});
    EXPECT_FALSE(scaled.IsProvisional());
    EXPECT_TRUE(isMean());
    // The finer level is not there yet, the coarser one shows meanwhile.
    draw({2048, 1024});
    EXPECT_TRUE(scaled.IsProvisional());
    EXPECT_TRUE(isMean());
    // What is seen of it is little work.
    scaled.Draw(photo, {2048, 1024}, QRect(0, 0, 400, 300), Quality::Smooth);
    scaled.Forget();
    scaled.Draw(photo, {2048, 1024}, QRect(0, 0, 400, 300), Quality::Smooth);
    EXPECT_FALSE(scaled.IsProvisional());
}

TEST(ScaledPixels, LiteralRows) {
    constexpr QRgb black = qRgb(0, 0, 0);
    constexpr QRgb grey = qRgb(100, 50, 200);
    const Pixels two(Row({black, grey}));
    // Above 300 % the photo's pixels are squares.
    EXPECT_TRUE(SamePixels(Drawn(two, {8, 4}).copy(0, 0, 8, 1),
                           Row({black, black, black, black, grey, grey, grey, grey})));
    // A smooth enlargement passes a quarter and three quarters of the way between the centres.
    EXPECT_TRUE(
        SamePixels(Drawn(two, {4, 1}), Row({black, qRgb(25, 13, 50), qRgb(75, 38, 150), grey})));
    EXPECT_TRUE(
        SamePixels(Drawn(two, {8, 1}, Quality::Smooth, Enlargement::Smooth).copy(2, 0, 1, 1),
                   Row({qRgb(13, 6, 25)})));
    // Two pixels from three: each is the mean of one and a half.
    EXPECT_TRUE(
        SamePixels(Drawn(Pixels(Row({qRgb(90, 0, 0), qRgb(0, 90, 0), qRgb(0, 0, 90)})), {2, 1}),
                   Row({qRgb(60, 30, 0), qRgb(0, 30, 60)})));
}

TEST(ScaledPixels, AnEvenColourStaysThatColourAtEverySize) {
    const QImage image =
        Filled({313, 207}, qRgba(26, 147, 194, 133), QImage::Format_ARGB32_Premultiplied);
    for (int width = 3; width < 1000; width += 31) {
        for (const Quality quality : {Quality::Fast, Quality::Smooth}) {
            const QImage drawn = Drawn(Pixels(image), {width, 1 + width * 2 / 3}, quality);
            for (int x = 0; x < drawn.width(); ++x) {
                ASSERT_EQ(drawn.pixelColor(x, drawn.height() / 2), image.pixelColor(0, 0))
                    << width << " at " << x;
            }
        }
    }
}

TEST(ScaledPixels, AShrunkCheckerboardIsEvenlyGrey) {
    const QImage image =
        Painted({2100, 2100}, [](int x, int y) { return ColourOf((x + y) % 2 == 0 ? 'k' : 'w'); });
    for (const int side : {1000, 700, 333, 52}) {
        const QImage drawn = Drawn(Pixels(image), {side, side});
        const QImage grey = Filled(drawn.size(), qRgb(128, 128, 128));
        EXPECT_LE(LargestDifference(drawn, grey, drawn.rect().adjusted(1, 1, -1, -1)), 12) << side;
    }
}

// What is drawn part after part is what is drawn at once: no wobble while panning, no part of the
// pyramid left out.
TEST(ScaledPixels, PartsAddUpToTheWhole) {
    const Pixels photo(TestPicture(2501, 1303));
    for (const QSize size : {QSize(2501, 1303), QSize(1777, 901), QSize(600, 313), QSize(41, 33)}) {
        const QImage whole = Drawn(photo, size);
        ScaledPixels scaled(Enlargement::Crisp);
        const QSize part = size / 3;
        for (const QPoint place :
             {QPoint(0, 0), QPoint(3, 2), QPoint(part.width(), 5), QPoint(7, part.height()),
              QPoint(size.width() - part.width(), size.height() - part.height()), QPoint(1, 1)}) {
            const QRect asked(place, part);
            scaled.Draw(photo, size, asked, Quality::Smooth);
            ASSERT_TRUE(scaled.DrawnPart().contains(asked));
            EXPECT_TRUE(
                SamePixels(scaled.Drawing().copy(asked.translated(-scaled.DrawnPart().topLeft())),
                           whole.copy(asked)));
        }
    }
}

TEST(ScaledPixels, AFastDrawingIsRefinedAndASmoothOneKept) {
    const Pixels photo(TestPicture(500, 300));
    const QSize size(311, 187);
    const QRect all(QPoint(0, 0), size);
    const QImage smooth = Drawn(photo, size);
    ScaledPixels scaled(Enlargement::Crisp);
    scaled.Draw(photo, size, all, Quality::Fast);
    EXPECT_NE(scaled.Drawing(), smooth);
    scaled.Draw(photo, size, all, Quality::Smooth);
    EXPECT_TRUE(SamePixels(scaled.Drawing(), smooth));
    scaled.Draw(photo, size, all, Quality::Fast);
    EXPECT_TRUE(SamePixels(scaled.Drawing(), smooth));
}

TEST(ScaledPixels, NoticesPixelsChangedInPlace) {
    Pixels photo(TestPicture(60, 40));
    ScaledPixels scaled(Enlargement::Crisp);
    const QSize size(20, 13);
    scaled.Draw(photo, size, {0, 0, 20, 13}, Quality::Smooth);
    const uchar* before = photo.Tile().constBits();
    photo.EditableTile().fill(Qt::red);
    EXPECT_EQ(photo.Tile().constBits(), before) << "the drawing must not hold the pixels";
    scaled.Draw(photo, size, {0, 0, 20, 13}, Quality::Smooth);
    EXPECT_EQ(scaled.Drawing().pixel(19, 12), qRgb(255, 0, 0));
}

// Every device pixel belongs to one tile and shows nothing but that tile.
TEST(ScaledPixels, AGridHasNoSeams) {
    const Pixels pattern(TestPicture(31, 17), 3, 2);
    EXPECT_TRUE(SamePixels(Drawn(pattern, pattern.Size()), pattern.ToImage()));
    const QRgb colour = qRgb(10, 120, 200);
    const Pixels sheet(Filled({113, 79}, colour), 5, 4);
    for (const double zoom : {0.11, 0.37, 0.5, 0.93, 1.0, 1.41, 3.7}) {
        const QSize size = (QSizeF(sheet.Size()) * zoom).toSize();
        EXPECT_TRUE(SamePixels(Drawn(sheet, size), Filled(size, colour)));
    }
}

TEST(ScaledPixels, AnArrangementIsDrawnPictureByPicture) {
    const Pixels sheet(Arrangement{{90, 70},
                                   {TestPicture(31, 17), TestPicture(12, 20)},
                                   {{0, {2, 3}}, {1, {50, 40}}, {0, {40, 3}}},
                                   {{{36, 0, 1, 70}, qRgb(0, 0, 0)}}});
    EXPECT_TRUE(SamePixels(Drawn(sheet, sheet.Size()), sheet.ToImage()));
    const QImage half = Drawn(sheet, {45, 35});
    EXPECT_TRUE(SamePixels(half.copy(25, 20, 6, 10), Drawn(Pixels(TestPicture(12, 20)), {6, 10})));
    EXPECT_EQ(half.pixel(18, 30), qRgb(0, 0, 0)) << "a mark stays a pixel wide";
    EXPECT_EQ(half.pixel(24, 20), qRgb(255, 255, 255));
}

}  // namespace
}  // namespace kadrona::imaging::view
