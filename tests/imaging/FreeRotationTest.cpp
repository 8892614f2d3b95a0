#include <cmath>
#include <limits>

#include "WriterFixture.h"
#include "imaging/pixels/FreeRotation.h"

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

/// What ImageMagick makes of an image by the given operations; null where it fails.
QImage ByImageMagick(const QImage& image, const QStringList& operations) {
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source.png"));
    const QString result = folder.filePath(QStringLiteral("result.png"));
    EXPECT_TRUE(image.save(source));
    const ProgramResult run = RunProgram(
        QStringLiteral("convert"), QStringList{source} + operations +
                                       QStringList{QStringLiteral("-depth"), QStringLiteral("8"),
                                                   QStringLiteral("PNG24:") + result});
    EXPECT_EQ(run.exitCode, 0) << qPrintable(run.errors);
    return QImage(result);
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

TEST(Rotated, ShowsTheSameAsImageMagickWithTheSameKernel) {
    if (!IsInstalled(u"convert"_s)) {
        GTEST_SKIP() << "ImageMagick is not installed";
    }
    const QImage photo = TestPicture(120, 90);
    for (const double degrees : {7.3, -30.0, 128.0}) {
        const QSize size = RotatedSize(photo.size(), degrees);
        const double x = (photo.width() - size.width()) / 2.0;
        const double y = (photo.height() - size.height()) / 2.0;
        // The viewport begins at whole pixels: what is left over moves the picture.
        const int left = static_cast<int>(std::floor(x));
        const int top = static_cast<int>(std::floor(y));
        const QString viewport = u"distort:viewport=%1x%2%3%4"_s.arg(
            QString::number(size.width()), QString::number(size.height()),
            QString::asprintf("%+d", left), QString::asprintf("%+d", top));
        const QString turn =
            u"60,45 1 %1 %2,%3"_s.arg(-degrees).arg(60 + left - x).arg(45 + top - y);
        const QImage expected = ByImageMagick(
            photo, {u"-virtual-pixel"_s, u"white"_s, u"-filter"_s, u"point"_s, u"-interpolate"_s,
                    u"catrom"_s, u"-define"_s, viewport, u"-distort"_s, u"SRT"_s, turn});
        const QImage actual = Rotated(Pixels(photo), degrees).ToImage();
        const QRect inside(QPoint(size.width() / 2 - 25, size.height() / 2 - 25), QSize(50, 50));
        EXPECT_LE(LargestDifference(actual, expected, inside), 2) << degrees;
    }
}

}  // namespace kadrona::imaging
