#include <QTransform>
#include <cmath>
#include <limits>

#include "imaging/pixels/FreeRotation.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

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
