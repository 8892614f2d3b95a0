#include <cmath>
#include <numeric>

#include "ImageMagick.h"
#include "imaging/tone/ColourEffects.h"
#include "imaging/tone/Curves.h"
#include "imaging/tone/HueFilter.h"

using namespace Qt::StringLiterals;
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
    QImage image(18 * 18, 18, QImage::Format_RGB32);
    for (int i = 0; i < 18 * 18 * 18; ++i) {
        image.setPixel(i % 324, i / 324, qRgb(i % 18 * 15, i / 18 % 18 * 15, i / 324 * 15));
    }
    return image;
}

struct Example {
    const char* name;
    PixelFilterPointer filter;
    QRgb pixel;
    QRgb expected;
};

}  // namespace

TEST(Filtered, KeepsGridAlphaAndTheOriginal) {
    QImage tile(2, 1, QImage::Format_ARGB32);
    tile.setPixel(0, 0, qRgba(200, 100, 0, 128));
    tile.setPixel(1, 0, qRgba(0, 0, 0, 0));
    const Pixels photo(tile, 3, 2);
    const QImage before = photo.ToImage().copy();
    const Pixels changed = Filtered(photo, *BalanceFilter({100, 0, 0}));
    EXPECT_EQ(changed.Columns(), 3);
    EXPECT_EQ(changed.Rows(), 2);
    const QColor half = changed.ToImage().pixelColor(4, 1);
    EXPECT_EQ(half.alpha(), 128);
    EXPECT_EQ(half.red(), 255) << "more than its alpha, before it is multiplied with it";
    EXPECT_NEAR(half.green(), 100, 1);
    EXPECT_EQ(qAlpha(changed.ToImage().pixel(5, 1)), 0);
    EXPECT_TRUE(SamePixels(photo, before));
    EXPECT_TRUE(Filtered(Pixels(), *GreyFilter()).IsEmpty());
}

TEST(HistogramOf, CountsEveryPixelOfTheTileOnce) {
    const Histogram histogram = HistogramOf(Pixels(Picture({"rrg", "kw-"}), 4, 4));
    EXPECT_EQ(histogram.red[255], 3);
    EXPECT_EQ(histogram.green[255], 2);
    EXPECT_EQ(histogram.blue[0], 4);
    EXPECT_EQ(histogram.luma[76], 2) << "red, 76.245";
    EXPECT_EQ(histogram.luma[150], 1) << "green, 149.685";
    EXPECT_EQ(histogram.luma[128], 1);
    EXPECT_EQ(std::accumulate(histogram.luma.begin(), histogram.luma.end(), 0ULL), 6);
    EXPECT_EQ(HistogramOf(Pixels()).red[0], 0);
}

TEST(GreyFilter, RoundsTheExactLuma) {
    // Exact halves go up, what is a thousandth below them goes down.
    const std::pair<QRgb, int> colours[] = {{qRgb(255, 255, 255), 255}, {qRgb(0, 0, 0), 0},
                                            {qRgb(255, 0, 0), 76},      {qRgb(0, 255, 0), 150},
                                            {qRgb(0, 0, 255), 29},      {qRgb(0, 0, 250), 29},
                                            {qRgb(6, 13, 141), 25},     {qRgb(6, 20, 219), 39}};
    for (const auto& [colour, luma] : colours) {
        EXPECT_EQ(qRed(Changed(GreyFilter(), colour)), luma) << QColor(colour).name().toStdString();
        EXPECT_EQ(Changed(GreyFilter(), colour), qRgb(luma, luma, luma));
    }
}

TEST(ColourFilters, ChangePixelsAsDocumented) {
    Histogram narrow;
    narrow.red[100] = narrow.red[150] = 1;
    narrow.green[7] = 5;
    narrow.blue[0] = narrow.blue[255] = 9;
    const Example examples[] = {
        {"white point, sample", WhitePointFilter(qRgb(200, 160, 100)), qRgb(200, 160, 100),
         qRgb(200, 200, 200)},
        {"white point, another", WhitePointFilter(qRgb(200, 160, 100)), qRgb(10, 255, 50),
         qRgb(10, 255, 100)},
        {"white point, black channel", WhitePointFilter(qRgb(0, 50, 100)), qRgb(1, 10, 20),
         qRgb(100, 20, 20)},
        {"white point, black", WhitePointFilter(qRgb(0, 0, 0)), qRgb(1, 2, 3), qRgb(1, 2, 3)},
        {"gain and offset", GainAndOffsetFilter(narrow), qRgb(125, 7, 99), qRgb(128, 7, 99)},
        {"gain and offset, ends", GainAndOffsetFilter(narrow), qRgb(100, 8, 0), qRgb(0, 8, 0)},
        {"gain and offset, beyond", GainAndOffsetFilter(narrow), qRgb(255, 0, 255),
         qRgb(255, 0, 255)},
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
        {"half as light", HueFilter({0, 0, -50}), qRgb(200, 100, 0), qRgb(100, 50, 0)},
    };
    for (const Example& example : examples) {
        const QColor changed(Changed(example.filter, example.pixel));
        EXPECT_EQ(changed.name().toStdString(), QColor(example.expected).name().toStdString())
            << example.name;
    }
}

TEST(ColourFilters, ChangeNothingWhereNothingIsSet) {
    const QImage colours = AllColours();
    const Histogram histogram = HistogramOf(Pixels(colours));
    const Example examples[] = {
        {"contrast", ContrastFilter({}), 0, 0},
        {"hue", HueFilter({}), 0, 0},
        {"hue, a full turn", HueFilter({360, 0, 0}), 0, 0},
        {"balance", BalanceFilter({}), 0, 0},
        {"equalisation", EqualisationFilter(histogram, 0), 0, 0},
        {"equalisation of one level", EqualisationFilter(HistogramOf(Pixels(Picture({"--"}))), 100),
         0, 0},
        {"curves", CurveFilter({}), 0, 0},
    };
    for (const Example& example : examples) {
        EXPECT_TRUE(SamePixels(Applied(example.filter, colours), colours)) << example.name;
    }
}

TEST(HueFilter, AgreesWithTheModelForEveryColour) {
    const HueAdjustment adjustments[] = {{33, 0, 0}, {-170, 40, 0}, {180, -30, 20}, {90, 100, -60}};
    const QImage colours = AllColours();
    for (const HueAdjustment& adjustment : adjustments) {
        const QImage changed = Applied(HueFilter(adjustment), colours);
        QImage expected = colours;
        for (int y = 0; y < colours.height(); ++y) {
            for (int x = 0; x < colours.width(); ++x) {
                const QColor colour(colours.pixel(x, y));
                const float share = static_cast<float>(adjustment.lightness) / 100;
                const float lightness = colour.lightnessF() * (1 - std::abs(share));
                const float hue = std::max(colour.hslHueF(), 0.0F) +
                                  static_cast<float>(adjustment.hueDegrees) / 360 + 1;
                const float saturation =
                    colour.hslSaturationF() * (1 + static_cast<float>(adjustment.saturation) / 100);
                expected.setPixelColor(
                    x, y,
                    QColor::fromHslF(hue - std::floor(hue), std::min(saturation, 1.0F),
                                     lightness + std::max(share, 0.0F)));
            }
        }
        EXPECT_LE(LargestDifference(changed, expected), 1) << adjustment.hueDegrees;
    }
}

TEST(EqualisationFilter, SpreadsTheLumaAndKeepsTheColour) {
    // Of the three pixels above the lowest level, two have 60.
    Histogram histogram;
    histogram.luma[10] = 2;
    histogram.luma[60] = 2;
    histogram.luma[90] = 1;
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 100), qRgb(10, 10, 10)), qRgb(0, 0, 0));
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 100), qRgb(60, 60, 60)), qRgb(170, 170, 170));
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 50), qRgb(60, 60, 60)), qRgb(115, 115, 115));
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 100), qRgb(90, 90, 90)), qRgb(255, 255, 255));
    const QRgb colour = qRgb(70, 55, 60);  // luma 60
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 100), colour), qRgb(180, 165, 170));
    EXPECT_EQ(Changed(EqualisationFilter(histogram, 100), qRgb(160, 0, 107)), qRgb(255, 110, 217))
        << "a channel that clips leaves the others alone";
}

TEST(Sequence, AppliesOneFilterAfterTheOther) {
    EXPECT_EQ(Sequence({}), nullptr);
    EXPECT_EQ(Sequence({nullptr, nullptr}), nullptr);
    const PixelFilterPointer grey = GreyFilter();
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

TEST(ColourFilters, AgreeWithImageMagick) {
    if (!IsInstalled(u"convert"_s)) {
        GTEST_SKIP() << "ImageMagick is not installed";
    }
    const QImage photo = TestPicture(120, 90);
    const QImage grey = Applied(GreyFilter(), photo);
    EXPECT_LE(LargestDifference(grey, ByImageMagick(photo, {u"-grayscale"_s, u"Rec601Luma"_s})), 1);

    const Histogram histogram = HistogramOf(Pixels(grey));
    EXPECT_LE(LargestDifference(Applied(EqualisationFilter(histogram, 100), grey),
                                ByImageMagick(grey, {u"-equalize"_s})),
              1);

    const QImage dull =
        Applied(BalanceFilter({-10, 20, 40}), Applied(ContrastFilter({-50, 0}), photo));
    QStringList stretch;
    for (const QString& channel : {u"R"_s, u"G"_s, u"B"_s}) {
        stretch += {u"-channel"_s, channel, u"-auto-level"_s};
    }
    EXPECT_LE(LargestDifference(Applied(GainAndOffsetFilter(HistogramOf(Pixels(dull))), dull),
                                ByImageMagick(dull, stretch)),
              1);
}

}  // namespace kadrona::imaging
