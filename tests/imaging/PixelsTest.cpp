#include <QTransform>
#include <array>
#include <limits>
#include <optional>
#include <stdexcept>

#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/tone/AverageColour.h"
#include "platform/Error.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

Pixels Photo() {
    return Pixels(Picture({"rgb", "ykw", "gbr"}));
}

bool LiesIn(const Pixels& part, const Pixels& whole) {
    const uchar* begin = whole.Tile().constBits();
    const uchar* start = part.Tile().constBits();
    return start >= begin && start < begin + whole.ByteCount();
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
    EXPECT_TRUE(LiesIn(withinTile, grid));

    const Pixels wholeTiles = Cropped(grid, {2, 0, 4, 4});
    EXPECT_TRUE(wholeTiles.SharesPixelsWith(Pixels(grid.Tile(), 2, 2)));

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
    const Pixels sheet = Repeated(grid, 1, 3);
    EXPECT_TRUE(sheet.SharesPixelsWith(Pixels(grid.Tile(), 2, 3)));
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
    for (int y = 2; y < small.height() - 2; ++y) {
        for (int x = 2; x < small.width() - 2; ++x) {
            ASSERT_NEAR(qGreen(small.pixel(x, y)), 127.5, 1) << x << ", " << y;
        }
    }
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

}  // namespace kadrona::imaging
