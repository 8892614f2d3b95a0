#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/tone/WhiteBalance.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

struct Light {
    double red, green, blue;
};
constexpr Light Daylight{1, 1, 1};
constexpr Light Tungsten{1, 0.83, 0.58};
constexpr Light Shade{0.71, 0.83, 1};
constexpr Light Fluorescent{0.86, 1, 0.81};

QRgb Lit(QRgb colour, double brightness, const Light& light) {
    const auto channel = [&](int level, double factor) {
        return std::clamp(qRound(level * factor * brightness), 0, 255);
    };
    return qRgb(channel(qRed(colour), light.red), channel(qGreen(colour), light.green),
                channel(qBlue(colour), light.blue));
}

/// A head with brown hair before a wall that darkens downwards unless it is white.
QImage Portrait(QRgb wall, QRgb skin, const Light& light) {
    return Painted({300, 400}, [&](int x, int y) {
        const double shade = wall == qRgb(255, 255, 255) ? 1 : 1 - 0.1 * y / 400;
        const bool isFace = std::hypot(x - 150, 0.75 * (y - 200)) < 75;
        const bool isHair = std::hypot(x - 150, y - 150) < 95;
        return isFace   ? Lit(skin, 1 - 0.0006 * std::abs(x - 140), light)
               : isHair ? Lit(qRgb(70, 52, 40), 1, light)
                        : Lit(wall, shade, light);
    });
}

/// How far a colour's chromaticity is from the true one's.
double Cast(QRgb colour, QRgb truth) {
    const auto logarithm = [](int channel, int green) { return std::log(double(channel) / green); };
    return std::hypot(
        logarithm(qRed(colour), qGreen(colour)) - logarithm(qRed(truth), qGreen(truth)),
        logarithm(qBlue(colour), qGreen(colour)) - logarithm(qBlue(truth), qGreen(truth)));
}

}  // namespace

TEST(WhiteBalanced, LeavesWhatIsNeutralOrUnsure) {
    std::vector<Pixels> left = {Pixels(Picture({"wk-", "--w"}), 2, 1), Pixels(Picture({"kkk"})),
                                Pixels(Filled({4, 4}, qRgb(40, 60, 220)))};
    for (const QRgb wall : {qRgb(255, 255, 255), qRgb(215, 215, 215), qRgb(140, 140, 140),
                            qRgb(190, 214, 240), qRgb(240, 225, 195), qRgb(170, 190, 160)}) {
        for (const QRgb skin : {qRgb(238, 204, 183), qRgb(233, 184, 166), qRgb(120, 84, 68)}) {
            left.emplace_back(Portrait(wall, skin, Daylight));
        }
    }
    for (size_t i = 0; i < left.size(); ++i) {
        EXPECT_TRUE(WhiteBalanced(left[i]).SharesPixelsWith(left[i])) << i;
    }
    EXPECT_TRUE(WhiteBalanced(Pixels()).IsEmpty());
}

TEST(WhiteBalanced, TakesTheLightOffWallAndSkin) {
    for (const Light& light : {Tungsten, Shade, Fluorescent}) {
        for (const QRgb wall : {qRgb(255, 255, 255), qRgb(215, 215, 215), qRgb(140, 140, 140)}) {
            for (const QRgb skin : {qRgb(238, 204, 183), qRgb(200, 150, 125), qRgb(120, 84, 68)}) {
                const QImage balanced =
                    WhiteBalanced(Pixels(Portrait(wall, skin, light))).ToImage();
                EXPECT_LE(Cast(balanced.pixel(10, 10), wall), 0.02)
                    << "blue light " << light.blue << ", wall " << qRed(wall);
                EXPECT_LE(Cast(balanced.pixel(140, 200), skin), 0.02)
                    << "blue light " << light.blue << ", skin " << qRed(skin);
            }
        }
    }
    // Half of a lamp's light at least, where the wall has a colour of its own.
    const QRgb skin = qRgb(238, 204, 183);
    const QImage photo = Portrait(qRgb(190, 214, 240), skin, Tungsten);
    EXPECT_LE(Cast(WhiteBalanced(Pixels(photo)).ToImage().pixel(140, 200), skin),
              Cast(photo.pixel(140, 200), skin) / 2);
}

TEST(WhiteBalanced, KeepsAlphaAndGrid) {
    QImage tile = Portrait(qRgb(215, 215, 215), qRgb(238, 204, 183), Tungsten)
                      .convertToFormat(QImage::Format_ARGB32);
    tile.setPixel(0, 0, qRgba(0, 0, 0, 0));
    tile.setPixel(1, 0, qRgba(200, 200, 200, 100));
    const Pixels balanced = WhiteBalanced(Pixels(tile, 2, 3));
    EXPECT_EQ(balanced.Size(), QSize(600, 1200));
    EXPECT_EQ(qAlpha(balanced.Tile().pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(balanced.Tile().pixel(1, 0)), 100);
}

}  // namespace kadrona::imaging
