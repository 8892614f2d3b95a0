#include <limits>
#include <stdexcept>

#include "imaging/pixels/Pixels.h"
#include "platform/Error.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

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

TEST(Pixels, SharesOnlyWithTheSameGridOfTheSameMemory) {
    const QImage tile = Picture({"rg"});
    EXPECT_TRUE(Pixels(tile, 2, 1).SharesPixelsWith(Pixels(tile, 2, 1)));
    EXPECT_FALSE(Pixels(tile, 2, 1).SharesPixelsWith(Pixels(tile, 1, 2)));
    EXPECT_FALSE(Pixels(tile).SharesPixelsWith(Pixels(tile.copy())));
}

TEST(Pixels, RefusesGridsThatCannotBe) {
    const int most = std::numeric_limits<int>::max();
    EXPECT_THROW(Pixels(Picture({"r"}), 0, 1), std::invalid_argument);
    EXPECT_THROW(Pixels(Picture({"rg"}), most, 1), platform::Error);
    // Possible as a grid, but not as an image.
    const Pixels wide(Picture({"r"}), most, 1);
    EXPECT_THROW(wide.ToImage(), platform::Error);
}

}  // namespace kadrona::imaging
