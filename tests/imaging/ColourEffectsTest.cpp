#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/tone/ColourEffects.h"
#include "imaging/tone/Curves.h"
#include "imaging/tone/HueFilter.h"
#include "imaging/tone/WhiteBalance.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

QRgb Changed(const PixelFilterPointer& filter, QRgb pixel) {
    std::vector<QRgb> pixels{pixel};
    filter->Apply(pixels);
    return pixels[0];
}

QImage Applied(const PixelFilterPointer& filter, const QImage& image) {
    return Filtered(Pixels(image), *filter).ToImage();
}

/// Every colour whose channels are multiples of 15; 18 x 18 x 18 of them.
QImage AllColours() {
    return Painted({18 * 18, 18},
                   [](int x, int y) { return qRgb(x % 18 * 15, x / 18 * 15, y * 15); });
}

struct Example {
    const char* name;
    PixelFilterPointer filter;
    QRgb pixel;
    QRgb expected;
};

struct Light {
    double red, green, blue;
};
constexpr Light Daylight{1, 1, 1};
constexpr Light Tungsten{1, 0.83, 0.58};
constexpr Light Shade{0.71, 0.83, 1};
constexpr Light Fluorescent{0.86, 1, 0.81};

/// Skin of the portrait below.
constexpr QRect Cheeks(110, 190, 80, 40);

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

TEST(Filtered, KeepsGridAlphaAndTheOriginal) {
    QImage tile = Picture({".."}, QImage::Format_ARGB32);
    tile.setPixel(0, 0, qRgba(200, 100, 0, 128));
    const Pixels photo(tile, 3, 2);
    const QImage before = photo.ToImage().copy();
    const Pixels changed = Filtered(photo, *BalanceFilter({100, 0, 0}));
    EXPECT_EQ(std::pair(changed.Columns(), changed.Rows()), std::pair(3, 2));
    const QColor half = changed.ToImage().pixelColor(4, 1);
    EXPECT_EQ(std::pair(half.alpha(), half.red()), std::pair(128, 255)) << "not above its alpha";
    EXPECT_NEAR(half.green(), 100, 1);
    EXPECT_EQ(qAlpha(changed.ToImage().pixel(5, 1)), 0);
    EXPECT_TRUE(SamePixels(photo, before));
    EXPECT_TRUE(Filtered(Pixels(), *GreyFilter()).IsEmpty());
}

TEST(HistogramOf, CountsEveryPixelOfTheTileOnce) {
    const Histogram histogram = HistogramOf(Pixels(Picture({"rrg", "kw-"}), 4, 4));
    EXPECT_EQ(std::tuple(histogram.red[255], histogram.green[255], histogram.blue[0]),
              std::tuple(3, 2, 4));
    // Of red, 76.245, green, 149.685, grey, black and white.
    const auto& luma = histogram.luma;
    EXPECT_EQ(std::tuple(luma[76], luma[150], luma[128], luma[0], luma[255]),
              std::tuple(2, 1, 1, 1, 1));
    EXPECT_EQ(HistogramOf(Pixels()).red[0], 0);
}

TEST(GreyFilter, RoundsTheExactLuma) {
    // Exact halves go up, what is a thousandth below them goes down.
    const std::pair<QRgb, int> colours[] = {{qRgb(255, 255, 255), 255}, {qRgb(0, 0, 0), 0},
                                            {qRgb(255, 0, 0), 76},      {qRgb(0, 255, 0), 150},
                                            {qRgb(0, 0, 255), 29},      {qRgb(0, 0, 250), 29},
                                            {qRgb(6, 13, 141), 25},     {qRgb(6, 20, 219), 39}};
    for (const auto& [colour, luma] : colours) {
        EXPECT_EQ(Changed(GreyFilter(), colour), qRgb(luma, luma, luma)) << colour;
    }
}

TEST(ColourFilters, ChangePixelsAsDocumented) {
    Histogram narrow;
    narrow.red[100] = narrow.red[150] = 1;
    narrow.green[7] = 5;
    narrow.blue[0] = narrow.blue[255] = 9;
    // Of the three pixels above the lowest level, two have 60.
    Histogram lumas;
    lumas.luma[10] = lumas.luma[60] = 2;
    lumas.luma[90] = 1;
    const PixelFilterPointer white = WhitePointFilter(qRgb(200, 160, 100));
    const PixelFilterPointer stretched = GainAndOffsetFilter(narrow);
    const Example examples[] = {
        {"its own sample", white, qRgb(200, 160, 100), qRgb(200, 200, 200)},
        {"up to white", white, qRgb(10, 255, 50), qRgb(10, 255, 100)},
        {"a black channel", WhitePointFilter(qRgb(0, 50, 100)), qRgb(1, 10, 20), qRgb(100, 20, 20)},
        {"a black sample", WhitePointFilter(qRgb(0, 0, 0)), qRgb(1, 2, 3), qRgb(1, 2, 3)},
        {"gain and offset", stretched, qRgb(125, 7, 99), qRgb(128, 7, 99)},
        {"their ends", stretched, qRgb(100, 8, 0), qRgb(0, 8, 0)},
        {"beyond them", stretched, qRgb(255, 0, 255), qRgb(255, 0, 255)},
        {"gain and offset of nothing", GainAndOffsetFilter({}), qRgb(1, 2, 3), qRgb(1, 2, 3)},
        {"no contrast", ContrastFilter({-100, 0}), qRgb(0, 90, 255), qRgb(128, 128, 128)},
        {"full contrast", ContrastFilter({100, 0}), qRgb(120, 127, 135), qRgb(0, 64, 255)},
        {"brighter", ContrastFilter({0, 100}), qRgb(0, 100, 255), qRgb(128, 178, 255)},
        {"darker", ContrastFilter({0, -100}), qRgb(0, 100, 255), qRgb(0, 50, 128)},
        {"balance", BalanceFilter({100, -100, 2}), qRgb(100, 200, 0), qRgb(228, 73, 3)},
        {"hue", HueFilter({120, 0, 0}), qRgb(255, 0, 0), qRgb(0, 255, 0)},
        {"hue back", HueFilter({-60, 0, 0}), qRgb(255, 0, 0), qRgb(255, 0, 255)},
        {"hue of grey", HueFilter({77, 100, 0}), qRgb(99, 99, 99), qRgb(99, 99, 99)},
        {"no saturation", HueFilter({0, -100, 0}), qRgb(200, 100, 0), qRgb(100, 100, 100)},
        {"doubled saturation", HueFilter({0, 100, 0}), qRgb(140, 128, 116), qRgb(152, 128, 104)},
        {"most saturation", HueFilter({0, 100, 0}), qRgb(200, 100, 50), qRgb(250, 83, 0)},
        {"lightest", HueFilter({0, 0, 100}), qRgb(1, 2, 3), qRgb(255, 255, 255)},
        {"darkest", HueFilter({0, 0, -100}), qRgb(1, 2, 3), qRgb(0, 0, 0)},
        {"into yellow", HueFilter({33, 0, 0}), qRgb(200, 150, 120), qRgb(200, 194, 120)},
        {"into blue", HueFilter({-170, 40, 0}), qRgb(200, 150, 120), qRgb(104, 155, 216)},
        {"opposite", HueFilter({180, -30, 20}), qRgb(60, 90, 200), qRgb(194, 177, 116)},
        {"darker", HueFilter({90, 100, -60}), qRgb(30, 160, 90), qRgb(0, 3, 76)},
        {"back", HueFilter({-75, -20, -30}), qRgb(210, 40, 170), qRgb(40, 41, 135)},
        {"beyond red", HueFilter({75, 20, 40}), qRgb(90, 140, 220), qRgb(229, 148, 242)},
        {"half as light", HueFilter({0, 0, -50}), qRgb(200, 100, 0), qRgb(100, 50, 0)},
        {"lowest luma", EqualisationFilter(lumas, 100), qRgb(10, 10, 10), qRgb(0, 0, 0)},
        {"two of three", EqualisationFilter(lumas, 100), qRgb(60, 60, 60), qRgb(170, 170, 170)},
        {"half of it", EqualisationFilter(lumas, 50), qRgb(60, 60, 60), qRgb(115, 115, 115)},
        {"all of them", EqualisationFilter(lumas, 100), qRgb(90, 90, 90), qRgb(255, 255, 255)},
        {"a colour", EqualisationFilter(lumas, 100), qRgb(70, 55, 60), qRgb(180, 165, 170)},
        {"it clips alone", EqualisationFilter(lumas, 100), qRgb(160, 0, 107), qRgb(255, 110, 217)},
    };
    for (const Example& example : examples) {
        const QColor changed(Changed(example.filter, example.pixel));
        EXPECT_EQ(changed.name().toStdString(), QColor(example.expected).name().toStdString())
            << example.name;
    }
}

TEST(ColourFilters, ChangeNothingWhereNothingIsSet) {
    const QImage colours = AllColours();
    const Histogram one = HistogramOf(Pixels(Picture({"--"})));
    int number = 0;
    for (const PixelFilterPointer& filter :
         {ContrastFilter({}), HueFilter({}), HueFilter({360, 0, 0}), BalanceFilter({}),
          CurveFilter({}), EqualisationFilter(HistogramOf(Pixels(colours)), 0),
          EqualisationFilter(one, 100)}) {
        EXPECT_TRUE(SamePixels(Applied(filter, colours), colours)) << "filter " << ++number;
    }
}

TEST(Sequence, AppliesOneFilterAfterTheOther) {
    const PixelFilterPointer grey = GreyFilter();
    EXPECT_EQ(Sequence({nullptr, nullptr}), nullptr);
    EXPECT_EQ(Sequence({nullptr, grey}), grey);
    const PixelFilterPointer brighter = ContrastFilter({0, 100});
    const PixelFilterPointer darker = BalanceFilter({-100, -100, -100});
    const PixelFilterPointer all = Sequence({brighter, darker, grey, nullptr, darker, brighter});
    for (const QRgb pixel : {qRgb(0, 90, 255), qRgb(250, 3, 77)}) {
        QRgb expected = pixel;
        for (const PixelFilterPointer& filter : {brighter, darker, grey, darker, brighter}) {
            expected = Changed(filter, expected);
        }
        EXPECT_EQ(Changed(all, pixel), expected);
    }
}

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
        EXPECT_TRUE(WhiteBalanced(left[i], Cheeks).SharesPixelsWith(left[i])) << i;
    }
    EXPECT_TRUE(WhiteBalanced(Pixels()).IsEmpty());
    const Pixels powdered(Portrait(qRgb(255, 255, 255), qRgb(197, 187, 194), Daylight));
    EXPECT_TRUE(WhiteBalanced(powdered, Cheeks).SharesPixelsWith(powdered));
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
    // Skin that is redder than most leaves a white wall neither green nor pink.
    for (const QRgb skin : {qRgb(150, 92, 76), qRgb(190, 118, 102), qRgb(226, 196, 180)}) {
        const QImage photo = Portrait(qRgb(255, 255, 255), skin, Tungsten);
        EXPECT_LE(Cast(WhiteBalanced(Pixels(photo), Cheeks).ToImage().pixel(10, 10),
                       QColor(Qt::white).rgb()),
                  0.05)
            << "skin " << qRed(skin);
    }
    // Nor where it leaves the light unsure, as in shade.
    const QImage shaded = Portrait(QColor(Qt::white).rgb(), qRgb(210, 150, 108), Shade);
    const QRgb wall = WhiteBalanced(Pixels(shaded), Cheeks).ToImage().pixel(10, 10);
    EXPECT_NEAR(qRed(wall) * qBlue(wall), qGreen(wall) * qGreen(wall), 3000) << qRed(wall);
    // Half of it at least, where the wall has a colour of its own but a face is known.
    for (const Light& light : {Tungsten, Shade, Fluorescent}) {
        for (const QRgb wall : {qRgb(190, 214, 240), qRgb(240, 225, 195), qRgb(170, 190, 160)}) {
            for (const QRgb skin : {qRgb(238, 204, 183), qRgb(200, 150, 125), qRgb(120, 84, 68)}) {
                const QImage photo = Portrait(wall, skin, light);
                EXPECT_LE(
                    Cast(WhiteBalanced(Pixels(photo), Cheeks).ToImage().pixel(140, 200), skin),
                    Cast(photo.pixel(140, 200), skin) / 2)
                    << "blue light " << light.blue << ", wall " << qRed(wall) << ", skin "
                    << qRed(skin);
            }
        }
    }
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
