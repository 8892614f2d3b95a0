#include <QTransform>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/FreeRotation.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/tone/AverageColour.h"
#include "imaging/tone/ColourEffects.h"
#include "platform/Error.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

Pixels Photo() {
    return Pixels(Picture({"rgb", "ykw", "gbr"}));
}

/// How much of a white canvas is black, in pixels.
double BlackArea(const QImage& image) {
    double area = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            area += (255 - qGreen(image.pixel(x, y))) / 255.0;
        }
    }
    return area;
}

}  // namespace

TEST(Pixels, ConvertsOnlyFormatsThatDiffer) {
    const QImage opaque = Picture({"rg"});
    EXPECT_EQ(Pixels(opaque).Tile().constBits(), opaque.constBits());

    const Pixels grey(opaque.convertToFormat(QImage::Format_Grayscale8));
    EXPECT_EQ(grey.Tile().format(), QImage::Format_RGB32);

    const Pixels transparent(Picture({"r."}, QImage::Format_ARGB32));
    EXPECT_EQ(transparent.Tile().format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_TRUE(SamePixels(transparent, Picture({"r."}, QImage::Format_ARGB32)));
}

TEST(Pixels, UnrollsAGrid) {
    const Pixels grid(Picture({"rg", "by"}), 3, 2);
    EXPECT_EQ(grid.Size(), QSize(6, 4));
    EXPECT_TRUE(SamePixels(grid, Picture({"rgrgrg", "bybyby", "rgrgrg", "bybyby"})));

    const Pixels single(Picture({"rg"}));
    EXPECT_EQ(single.ToImage().constBits(), single.Tile().constBits());
    EXPECT_TRUE(Pixels().ToImage().isNull());
}

TEST(Pixels, ShareOnlyWithTheSameGridAndRefuseGridsThatCannotBe) {
    const QImage tile = Picture({"rg"});
    EXPECT_TRUE(Pixels(tile, 2, 1).SharesPixelsWith(Pixels(tile, 2, 1)));
    EXPECT_FALSE(Pixels(tile, 2, 1).SharesPixelsWith(Pixels(tile, 1, 2)));
    EXPECT_FALSE(Pixels(tile).SharesPixelsWith(Pixels(tile.copy())));

    const int most = std::numeric_limits<int>::max();
    EXPECT_THROW(Pixels(Picture({"r"}), 0, 1), std::invalid_argument);
    EXPECT_THROW(Pixels(Picture({"rg"}), most, 1), platform::Error);
    // Possible as a grid, but not as an image.
    const Pixels wide(Picture({"r"}), most, 1);
    EXPECT_THROW(wide.ToImage(), platform::Error);
}

TEST(Pixels, OfAnArrangementAreWorkedOnAsWhatTheyShow) {
    const Pixels arranged(
        Arrangement{{5, 4}, {Picture({"rg", "bk"})}, {{0, {0, 0}}, {0, {3, 2}}}, {}});
    const Pixels whole(arranged.ToImage());
    EXPECT_EQ(AverageOf(arranged).red, AverageOf(whole).red);
    const auto grey = [](const Pixels& pixels) { return Filtered(pixels, *GreyFilter()); };
    EXPECT_EQ(grey(arranged).ToImage(), grey(whole).ToImage());
    EXPECT_EQ(Repeated(arranged, 2, 1).ToImage(), Repeated(whole, 2, 1).ToImage());
    EXPECT_EQ(Resampled(arranged, {9, 9}).ToImage(), Resampled(whole, {9, 9}).ToImage());
}

TEST(AverageOf, RoundsToNearestBeyond32BitSums) {
    QImage image = Picture({"k", "k"});
    image.setPixel(0, 1, qRgb(1, 3, 254));
    const AverageColour average = AverageOf(Pixels(image, 5, 7));
    // Of 0.5, 1.5 and 127.
    EXPECT_EQ(qRgb(average.red, average.green, average.blue), qRgb(1, 2, 127));
    EXPECT_EQ(AverageOf(Pixels()).red, 0);
    const Pixels large(Filled({5000, 4000}, qRgb(255, 254, 1)));
    EXPECT_EQ(AverageOf(large).red, 255) << "the sum of a channel is 5.1e9";
}

TEST(Cropped, FillsWhatOverhangsWithWhite) {
    const std::pair<QRect, QImage> cases[] = {
        {{1, 0, 2, 2}, Picture({"gb", "kw"})},
        {{-1, 0, 2, 2}, Picture({"wr", "wy"})},
        {{0, -1, 2, 2}, Picture({"ww", "rg"})},
        {{2, 1, 2, 2}, Picture({"ww", "rw"})},
        {{0, 2, 2, 2}, Picture({"gb", "ww"})},
        {{-1, -1, 5, 5}, Picture({"wwwww", "wrgbw", "wykww", "wgbrw", "wwwww"})},
        {{3, 0, 1, 2}, Picture({"w", "w"})},
        {{-100, 900, 2, 1}, Picture({"ww"})},
    };
    for (const auto& [rectangle, expected] : cases) {
        EXPECT_TRUE(SamePixels(Cropped(Photo(), rectangle), expected))
            << rectangle.x() << ", " << rectangle.y();
    }
    EXPECT_THROW(Cropped(Photo(), {-1, 0, std::numeric_limits<int>::max(), 1}), platform::Error);
    EXPECT_TRUE(Cropped(Photo(), QRect(1, 1, 0, 2)).IsEmpty());
    EXPECT_TRUE(SamePixels(Cropped(Pixels(), QRect(0, 0, 2, 1)), Picture({"ww"})));
}

TEST(Cropped, UnrollsOnlyWhatAGridNeeds) {
    const Pixels grid(Picture({"rg", "by"}), 3, 3);
    const Pixels withinTile = Cropped(grid, {3, 2, 1, 2});
    EXPECT_TRUE(SamePixels(withinTile, Picture({"g", "y"})));
    EXPECT_EQ(withinTile.Tile().constBits(), grid.Tile().constScanLine(0) + 4);
    EXPECT_TRUE(Cropped(grid, {2, 0, 4, 4}).SharesPixelsWith(Pixels(grid.Tile(), 2, 2)));
    EXPECT_TRUE(SamePixels(Cropped(grid, {1, 1, 3, 2}), Picture({"yby", "grg"})));
    EXPECT_TRUE(SamePixels(Cropped(grid, {5, 5, 2, 2}), Picture({"yw", "ww"})));
    // A small part of a grid that could never be unrolled.
    const Pixels huge(grid.Tile(), 1'000'000'000, 1'000'000'000);
    EXPECT_TRUE(SamePixels(Cropped(huge, {1'999'999'997, 1, 4, 2}), Picture({"ybyw", "grgw"})));
}

TEST(Cropped, IsSafeWhenTheParentChangesOrGoesAndLeavesItAlone) {
    std::optional<QImage> parent = Photo().ToImage().copy();
    Pixels crop = Cropped(Pixels(*parent), {1, 0, 2, 2});
    ASSERT_EQ(crop.Tile().constBits(), parent->constScanLine(0) + 4);

    parent->fill(Qt::red);
    EXPECT_TRUE(SamePixels(crop, Picture({"gb", "kw"})));
    parent.reset();
    const Pixels inner = Cropped(crop, {1, 1, 1, 1});
    const QImage copy = crop.Tile();
    crop.EditableTile().fill(Qt::black);
    EXPECT_TRUE(SamePixels(crop, Picture({"kk", "kk"})));
    EXPECT_TRUE(SamePixels(copy, Picture({"gb", "kw"})));
    EXPECT_TRUE(SamePixels(inner, Picture({"w"})));

    const Pixels living = Photo();
    Cropped(living, {0, 1, 3, 2}).EditableTile().fill(Qt::red);
    EXPECT_TRUE(SamePixels(living, Photo().ToImage()));
}

TEST(CanvasEnlarged, PutsTheOddPixelRightAndBottom) {
    const Pixels photo(Picture({"rg"}));
    EXPECT_TRUE(SamePixels(CanvasEnlarged(photo, {5, 4}, Qt::black),
                           Picture({"kkkkk", "krgkk", "kkkkk", "kkkkk"})));
    EXPECT_TRUE(SamePixels(CanvasEnlarged(photo, {1, 2}), Picture({"rg", "ww"})));
    EXPECT_TRUE(CanvasEnlarged(photo, {2, 0}).SharesPixelsWith(photo));
    EXPECT_TRUE(
        SamePixels(CanvasEnlarged(Pixels(photo.Tile(), 2, 1), {6, 1}), Picture({"wrgrgw"})));
    const Pixels transparent(Picture({"."}, QImage::Format_ARGB32));
    EXPECT_TRUE(SamePixels(CanvasEnlarged(transparent, {3, 1}, QColor(255, 0, 0, 10)),
                           Picture({"r.r"}, QImage::Format_ARGB32)));
    EXPECT_THROW(CanvasEnlarged(photo, {std::numeric_limits<int>::max(), 1}), platform::Error);
}

TEST(Turned, KeepsAGridAGrid) {
    const Pixels grid(Picture({"rgb", "ykw"}), 2, 1);
    const Pixels right = Turned(grid, QuarterTurn::Clockwise);
    EXPECT_EQ(std::pair(right.Columns(), right.Rows()), std::pair(1, 2));
    EXPECT_TRUE(SamePixels(right, Picture({"yr", "kg", "wb", "yr", "kg", "wb"})));
    EXPECT_TRUE(SamePixels(Turned(Pixels(grid.Tile()), QuarterTurn::CounterClockwise),
                           Picture({"bw", "gk", "ry"})));
    EXPECT_TRUE(SamePixels(Turned(right, QuarterTurn::CounterClockwise), grid.ToImage()));
    EXPECT_TRUE(SamePixels(Turned(Cropped(Photo(), {1, 0, 2, 2}), QuarterTurn::Clockwise),
                           Picture({"kg", "wb"})))
        << "a part of another picture";
}

TEST(Repeated, MultipliesGrids) {
    const Pixels grid(Picture({"rg"}), 2, 1);
    EXPECT_TRUE(Repeated(grid, 1, 3).SharesPixelsWith(Pixels(grid.Tile(), 2, 3)));
    EXPECT_THROW(Repeated(grid, std::numeric_limits<int>::max(), 1), platform::Error);
}

TEST(Resampled, InterpolatesWithTheCubicKernel) {
    // The kernel at 1/4, 3/4 and 5/4 is 111/128, 29/128 and -9/128; what leaves the picture does
    // not count, and the overshoot of the outer pixels is cut off.
    const Pixels wide = Resampled(Pixels(Picture({"kw"})), {4, 1});
    const QImage expected = Painted({4, 1}, [](int x, int) {
        const int grey = std::array{0, 53, 202, 255}.at(size_t(x));
        return qRgb(grey, grey, grey);
    });
    EXPECT_TRUE(SamePixels(wide, expected));
    EXPECT_TRUE(SamePixels(Resampled(Pixels(Picture({"k", "w"})), {1, 4}),
                           wide.Tile().transformed(QTransform().rotate(90).scale(1, -1))));
}

TEST(Resampled, AveragesWhatIsFinerThanAPixel) {
    const Pixels stripes(Picture({"kw", "wk"}), 101, 83);
    const QImage small = Resampled(stripes, {53, 49}).ToImage();
    EXPECT_LE(LargestDifference(small, Filled(small.size(), qRgb(128, 128, 128)),
                                small.rect().adjusted(2, 2, -2, -2)),
              1);
}

TEST(Resampled, KeepsPlainColoursAlphaAndSize) {
    EXPECT_TRUE(SamePixels(Resampled(Pixels(Picture({"r"}), 5, 3), {413, 2}),
                           Filled({413, 2}, qRgb(255, 0, 0))));
    const Pixels clear = Resampled(Pixels(Picture({"r.", ".r"}, QImage::Format_ARGB32)), {31, 29});
    const auto* row = reinterpret_cast<const QRgb*>(clear.Tile().constScanLine(14));
    EXPECT_TRUE(std::all_of(row, row + 31, [](QRgb pixel) { return qRed(pixel) == qAlpha(pixel); }))
        << "premultiplied red";
    const Pixels photo = Photo();
    EXPECT_TRUE(Resampled(photo, {3, 3}).SharesPixelsWith(photo));
    EXPECT_TRUE(Resampled(photo, {0, 3}).IsEmpty());
    EXPECT_TRUE(Resampled(Pixels(), {3, 3}).IsEmpty());
    EXPECT_THROW(Resampled(photo, {std::numeric_limits<int>::max(), 1}), platform::Error);

    // A grid is the picture that it shows.
    const Pixels grid(Picture({"rgb", "ykw", "gbr", "k-w"}), 3, 2);
    for (const QSize size : {QSize(4, 3), QSize(17, 5), QSize(2, 30)}) {
        EXPECT_TRUE(
            SamePixels(Resampled(grid, size), Resampled(Pixels(grid.ToImage()), size).ToImage()));
    }
}

TEST(Rotated, TurnsByQuartersWithoutLoss) {
    const Pixels photo(Picture({"rgb", "ykw"}));
    const QImage left = Picture({"bw", "gk", "ry"});
    const QImage half = Picture({"wky", "bgr"});
    const QImage right = Picture({"yr", "kg", "wb"});
    for (const auto& [degrees, expected] : {std::pair(90.0, left),
                                            {-270, left},
                                            {450, left},
                                            {90 + 1e-9, left},
                                            {180, half},
                                            {-180, half},
                                            {-90, right},
                                            {270, right}}) {
        EXPECT_TRUE(SamePixels(Rotated(photo, degrees), expected)) << degrees;
        EXPECT_EQ(RotatedSize(photo.Size(), degrees), expected.size());
    }
    for (const double degrees : {0.0, -0.0, 360.0, -720.0, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()}) {
        EXPECT_TRUE(Rotated(photo, degrees).SharesPixelsWith(photo)) << degrees;
    }
    EXPECT_TRUE(Rotated(Pixels(), 10).IsEmpty());
    const Pixels sheet(photo.Tile(), 3, 2);
    EXPECT_EQ(Rotated(sheet, 90).Columns(), 2) << "a grid stays one";
}

TEST(Rotated, KeepsAPlainAreaAndItsSize) {
    const QSize sizes[] = {{1, 1}, {1, 40}, {2, 2}, {37, 11}, {60, 61}, {3000, 1}};
    for (const QSize size : sizes) {
        for (const double degrees : {10.0, 45.0, -33.7, 91.5, 179.9, 0.01}) {
            const Pixels rotated = Rotated(Pixels(Filled(size, 0xff000000)), degrees);
            EXPECT_EQ(rotated.Size(), RotatedSize(size, degrees));
            const double area = size.width() * size.height();
            EXPECT_NEAR(BlackArea(rotated.ToImage()), area, 0.02 * area + 0.2)
                << size.width() << " x " << size.height() << " by " << degrees;
            const Pixels white = Rotated(Pixels(Filled(size, 0xffffffff)), degrees);
            EXPECT_TRUE(SamePixels(white, Filled(white.Size(), 0xffffffff)));
        }
    }
}

TEST(Rotated, FillsTheCornersAndTurnsCounterClockwise) {
    const QRect bar(22, 18, 16, 4);  // points to the right
    const QImage image = Painted({40, 40}, [&](int x, int y) {
        return bar.contains(x, y) ? qRgb(255, 0, 0) : qRgb(10, 200, 30);
    });
    const QImage rotated = Rotated(Pixels(image), 45, QColor(1, 2, 3)).ToImage();
    ASSERT_EQ(rotated.size(), QSize(57, 57));
    for (const QPoint corner : {QPoint(0, 0), QPoint(56, 0), QPoint(0, 56), QPoint(56, 56)}) {
        EXPECT_EQ(rotated.pixel(corner), qRgb(1, 2, 3));
    }
    EXPECT_EQ(rotated.pixel(28 + 7, 28 - 7), qRgb(255, 0, 0)) << "now points up and right";
    EXPECT_EQ(rotated.pixel(28 + 7, 28 + 7), qRgb(10, 200, 30));
}

TEST(Rotated, KeepsPremultipliedColoursWithinTheirAlpha) {
    const QImage image = Painted(
        {50, 40}, [](int x, int y) { return qRgba(255, 255, 255, x < 25 ? 0 : 5 * (x + y) % 256); },
        QImage::Format_ARGB32);
    const QImage rotated = Rotated(Pixels(image), 20, Qt::black).ToImage();
    ASSERT_EQ(rotated.format(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < rotated.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(rotated.constScanLine(y));
        for (int x = 0; x < rotated.width(); ++x) {
            ASSERT_LE(std::max({qRed(row[x]), qGreen(row[x]), qBlue(row[x])}), qAlpha(row[x]));
        }
    }
    EXPECT_EQ(rotated.pixel(0, 0), 0xff000000) << "corners are opaque";
    EXPECT_EQ(qAlpha(rotated.pixel(rotated.width() / 2 - 12, rotated.height() / 2)), 0);
}

// Waves of 12 and 16 pixels, between whose pixels a plainer kernel would flatten them.
TEST(Rotated, FollowsAFunctionOfThePlace) {
    const auto wave = [](QPointF fromMiddle) {
        const int level =
            qRound(128 + 60 * std::sin(fromMiddle.x() / 2) + 60 * std::sin(fromMiddle.y() / 2.5));
        return qRgb(level, level, level);
    };
    const Pixels photo(Painted(
        {120, 90}, [&](int x, int y) { return wave(QPointF(x, y) - QPointF(59.5, 44.5)); }));
    for (const double degrees : {7.3, -30.0, 128.0}) {
        const QImage rotated = Rotated(photo, degrees).ToImage();
        const QPointF middle((rotated.width() - 1) / 2.0, (rotated.height() - 1) / 2.0);
        const QTransform back = QTransform().rotate(degrees);
        const QImage expected = Painted(
            rotated.size(), [&](int x, int y) { return wave(back.map(QPointF(x, y) - middle)); });
        const QRect inside(middle.toPoint() - QPoint(25, 25), QSize(50, 50));
        EXPECT_LE(LargestDifference(rotated, expected, inside), 2) << degrees;
    }
}

}  // namespace kadrona::imaging
