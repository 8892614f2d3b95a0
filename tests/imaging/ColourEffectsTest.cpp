#include <cmath>
#include <numeric>

#include "WriterFixture.h"
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
    return Painted({18 * 18, 18},
                   [](int x, int y) { return qRgb(x % 18 * 15, x / 18 * 15, y * 15); });
}

struct Example {
    const char* name;
    PixelFilterPointer filter;
    QRgb pixel;
    QRgb expected;
};

}  // namespace

TEST(Filtered, KeepsGridAlphaAndTheOriginal) {
    QImage tile = Picture({".."}, QImage::Format_ARGB32);
    tile.setPixel(0, 0, qRgba(200, 100, 0, 128));
    const Pixels photo(tile, 3, 2);
    const QImage before = photo.ToImage().copy();
    const Pixels changed = Filtered(photo, *BalanceFilter({100, 0, 0}));
    EXPECT_EQ(std::pair(changed.Columns(), changed.Rows()), std::pair(3, 2));
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

TEST(HueFilter, AgreesWithTheModelForEveryColour) {
    const HueAdjustment adjustments[] = {{33, 0, 0}, {-170, 40, 0}, {180, -30, 20}, {90, 100, -60}};
    const QImage colours = AllColours();
    for (const HueAdjustment& adjustment : adjustments) {
        const float turn = static_cast<float>(adjustment.hueDegrees) / 360 + 1;
        const float factor = 1 + static_cast<float>(adjustment.saturation) / 100;
        const float share = static_cast<float>(adjustment.lightness) / 100;
        const QImage expected = Painted(colours.size(), [&](int x, int y) {
            const QColor colour(colours.pixel(x, y));
            const float hue = std::max(colour.hslHueF(), 0.0F) + turn;
            return QColor::fromHslF(
                       hue - std::floor(hue), std::min(colour.hslSaturationF() * factor, 1.0F),
                       colour.lightnessF() * (1 - std::abs(share)) + std::max(share, 0.0F))
                .rgb();
        });
        EXPECT_LE(LargestDifference(Applied(HueFilter(adjustment), colours), expected), 1)
            << adjustment.hueDegrees;
    }
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
    const auto expectSame = [](const PixelFilterPointer& filter, const QImage& image,
                               const QString& operations) {
        const QImage expected = ByImageMagick(image, operations.split(u' '));
        EXPECT_LE(LargestDifference(Applied(filter, image), expected), 1) << qPrintable(operations);
    };
    const QImage photo = TestPicture(120, 90);
    expectSame(GreyFilter(), photo, u"-grayscale Rec601Luma"_s);
    const QImage grey = Applied(GreyFilter(), photo);
    expectSame(EqualisationFilter(HistogramOf(Pixels(grey)), 100), grey, u"-equalize"_s);
    const QImage dull =
        Applied(BalanceFilter({-10, 20, 40}), Applied(ContrastFilter({-50, 0}), photo));
    expectSame(GainAndOffsetFilter(HistogramOf(Pixels(dull))), dull,
               u"-channel R -auto-level -channel G -auto-level -channel B -auto-level"_s);
}

}  // namespace kadrona::imaging
