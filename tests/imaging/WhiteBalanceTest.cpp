#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/tone/WhiteBalance.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

/// A grey wall that darkens downwards with a skin-coloured face of some radius before it, in
/// light that multiplies the channels.
QImage Portrait(double red, double green, double blue, int radius) {
    QImage image(300, 400, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isFace = std::hypot(x - 150, y - 200) < radius;
            const int wall = 190 - y / 5;
            const QRgb lit = isFace ? qRgb(200, 150, 125) : qRgb(wall, wall, wall);
            image.setPixel(x, y,
                           qRgb(std::lround(qRed(lit) * red), std::lround(qGreen(lit) * green),
                                std::lround(qBlue(lit) * blue)));
        }
    }
    return image;
}

/// How far a colour is from grey: the largest difference between two of its channels.
int Cast(QRgb colour) {
    const auto [least, most] = std::minmax({qRed(colour), qGreen(colour), qBlue(colour)});
    return most - least;
}

}  // namespace

TEST(WhiteBalanced, LeavesPicturesThatAreNeutralOrWithoutGrey) {
    QImage saturated(4, 4, QImage::Format_RGB32);
    saturated.fill(qRgb(40, 60, 220));
    for (const Pixels& left :
         {Pixels(Picture({"wk-", "--w"}), 2, 1), Pixels(Picture({"kkk"})), Pixels(saturated)}) {
        EXPECT_TRUE(WhiteBalanced(left).SharesPixelsWith(left));
    }
    EXPECT_TRUE(WhiteBalanced(Pixels()).IsEmpty());
}

TEST(WhiteBalanced, MakesTheWallNeutralNotTheAverage) {
    struct Light {
        const char* name;
        double red, green, blue;
        int faceRadius;
    };
    const std::vector<Light> lights = {{"daylight", 1, 1, 1, 120},
                                       {"tungsten", 1.2, 1, 0.7, 120},
                                       {"shade", 0.85, 1, 1.2, 120},
                                       {"fluorescent", 0.9, 1.1, 0.85, 120},
                                       {"mostly face", 1.05, 1, 0.9, 165}};
    for (const Light& light : lights) {
        const QImage balanced =
            WhiteBalanced(Pixels(Portrait(light.red, light.green, light.blue, light.faceRadius)))
                .ToImage();
        EXPECT_LE(Cast(balanced.pixel(10, 10)), 3) << light.name;
        EXPECT_LE(Cast(balanced.pixel(290, 390)), 3) << light.name;
        // The face keeps its colour: red over blue as in neutral light, 1.6.
        const QRgb face = balanced.pixel(150, 200);
        EXPECT_NEAR(double(qRed(face)) / qBlue(face), 1.6, 0.05) << light.name;
    }
}

TEST(WhiteBalanced, KeepsAlphaAndGrid) {
    QImage tile = Portrait(1.2, 1, 0.7, 120).convertToFormat(QImage::Format_ARGB32);
    tile.setPixel(0, 0, qRgba(0, 0, 0, 0));
    tile.setPixel(1, 0, qRgba(200, 200, 200, 100));
    const Pixels balanced = WhiteBalanced(Pixels(tile, 2, 3));
    EXPECT_EQ(balanced.Size(), QSize(600, 1200));
    EXPECT_EQ(qAlpha(balanced.Tile().pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(balanced.Tile().pixel(1, 0)), 100);
}

}  // namespace kadrona::imaging
