#include "ReaderFixture.h"

namespace kadrona::imaging::test {

namespace {

JpegContent Uniform(int channels, std::array<int, 4> values) {
    JpegContent content;
    content.channels = channels;
    content.pixel = [channels, values](int, int, uchar* pixel) {
        std::copy_n(values.begin(), channels, pixel);
    };
    return content;
}

QByteArray DisplayP3() {
    return RgbProfile(0.680, 0.320, 0.265, 0.690, 0.150, 0.060, 0);
}

QByteArray AdobeRgb() {
    return RgbProfile(0.64, 0.33, 0.21, 0.71, 0.15, 0.06, 563.0 / 256);
}

}  // namespace

// Colours of sRGB in wider spaces, by the matrices of CSS Color 4 and of Adobe RGB (1998).
TEST(ReaderColour, WideGamutProfilesAreBroughtToSrgb) {
    struct Case {
        const char* name;
        QByteArray profile;
        QColor stored;
        QColor expected;
    };
    const Case cases[] = {
        {"P3 red", DisplayP3(), QColor(234, 51, 35), QColor(255, 0, 0)},
        {"P3 skin", DisplayP3(), QColor(246, 202, 157), QColor(255, 200, 150)},
        {"P3 blue", DisplayP3(), QColor(85, 148, 214), QColor(60, 150, 220)},
        {"P3 grey", DisplayP3(), QColor(128, 128, 128), QColor(128, 128, 128)},
        {"Adobe red", AdobeRgb(), QColor(219, 0, 0), QColor(255, 0, 0)},
        {"Adobe green", AdobeRgb(), QColor(144, 255, 60), QColor(0, 255, 0)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray png = WithProfile(Written(Plain(3, 3, c.stored), "png"), c.profile);
        ExpectColour(Read(png), {1, 1}, c.expected, 2);
        const QImage deep = Plain(3, 3, c.stored).convertToFormat(QImage::Format_RGBA64);
        ExpectColour(Read(WithProfile(Written(deep, "png"), c.profile)), {1, 1}, c.expected, 2);
        JpegContent jpeg = Uniform(3, {c.stored.red(), c.stored.green(), c.stored.blue()});
        jpeg.profile = c.profile;
        ExpectColour(Read(Jpeg(jpeg)), {8, 8}, c.expected, 4);  // it stores Y'CbCr of 8 bits
    }
}

// Chunks of PNG: 100000 times the gamma of the file; white, red, green and blue.
TEST(ReaderColour, AGammaOfPngIsThatOfSrgbWhereItIsMeantSo) {
    const QByteArray png = Written(Plain(1, 1, QColor(20, 55, 200)), "png");
    const QByteArray plain = png.first(33) + png.mid(png.indexOf("IDAT") - 4);
    const auto gamma = [](quint32 value) { return BigEndian(value); };
    const auto primaries = [](std::array<quint32, 8> values) {
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += BigEndian(value);
        }
        return bytes;
    };
    const QByteArray srgb = primaries({31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
    const QByteArray adobe = primaries({31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000});
    const QByteArray meant = WithChunk(plain, "gAMA", gamma(45455));
    ExpectColours(Read(meant), {{0, 0, "#1437c8"}});
    ExpectColours(Read(WithChunk(meant, "cHRM", srgb)), {{0, 0, "#1437c8"}});
    ExpectColours(Read(WithChunk(WithChunk(plain, "sRGB", QByteArray(1, '\0')), "gAMA", gamma(9))),
                  {{0, 0, "#1437c8"}});
    ExpectColour(Read(WithChunk(plain, "gAMA", gamma(100'000))), {0, 0}, QColor(79, 128, 229), 2);
    EXPECT_LT(Read(WithChunk(meant, "cHRM", adobe)).pixels.Tile().pixelColor(0, 0).red(), 10);
    ExpectColours(Read(WithChunk(plain, "gAMA", gamma(0))), {{0, 0, "#1437c8"}});
}

TEST(ReaderColour, TableProfilesAreApplied) {
    // Lightness from the first channel alone: no matrix does that.
    const QByteArray profile = TableProfile(3, [](const std::array<double, 4>& rgb) {
        return cmsCIELab{100 * rgb[0], 0, 0};
    });
    const QByteArray png = WithProfile(Written(Plain(3, 3, QColor(255, 0, 0)), "png"), profile);
    ExpectColour(Read(png), {1, 1}, Qt::white, 1);
    JpegContent jpeg = Uniform(3, {0, 255, 255});
    jpeg.profile = profile;
    ExpectColour(Read(Jpeg(jpeg)), {8, 8}, Qt::black, 2);
}

TEST(ReaderColour, InksWithoutAProfileAreMultipliedOut) {
    const auto inks = [](bool inverted, bool ycck, std::array<int, 4> values) {
        JpegContent content = Uniform(4, values);
        content.adobeMarker = inverted;
        content.ycck = ycck;
        return Read(Jpeg(content));
    };
    // Adobe: 255 is no ink.
    ExpectColour(inks(true, false, {255, 255, 255, 255}), {8, 8}, Qt::white, 1);
    ExpectColour(inks(true, false, {0, 255, 255, 255}), {8, 8}, Qt::cyan, 1);
    ExpectColour(inks(true, false, {255, 255, 255, 51}), {8, 8}, QColor(51, 51, 51), 1);
    ExpectColour(inks(true, true, {255, 0, 255, 255}), {8, 8}, Qt::magenta, 3);
    ExpectColour(inks(true, true, {200, 100, 50, 128}), {8, 8}, QColor(100, 50, 25), 3);
    // Without Adobe's marker 0 is no ink.
    ExpectColour(inks(false, false, {0, 0, 0, 0}), {8, 8}, Qt::white, 1);
    ExpectColour(inks(false, false, {0, 0, 255, 0}), {8, 8}, Qt::yellow, 1);
}

TEST(ReaderColour, InksAreConvertedByTheirProfile) {
    // Black takes the lightness; magenta is a colour of its own, far from naive magenta.
    const QByteArray profile = TableProfile(4, [](const std::array<double, 4>& inks) {
        return cmsCIELab{100 * (1 - inks[3]), 0, -40 * inks[1] * (1 - inks[3])};
    });
    JpegContent content = Uniform(4, {255, 255, 255, 255});
    content.profile = profile;
    ExpectColour(Read(Jpeg(content)), {8, 8}, Qt::white, 1);
    content.pixel = Uniform(4, {255, 255, 255, 128}).pixel;
    // L* 50.2 is 120 in sRGB; multiplied out it would be 128.
    ExpectColour(Read(Jpeg(content)), {8, 8}, QColor(120, 120, 120), 2);
    content.adobeMarker = false;
    content.pixel = Uniform(4, {0, 0, 0, 255}).pixel;
    const LoadedImage black = Read(Jpeg(content));
    ExpectColour(black, {8, 8}, Qt::black, 1);
    EXPECT_EQ(qAlpha(black.pixels.Tile().pixel(8, 8)), 255);
}

TEST(ReaderColour, GreyProfilesBelongToGreyPictures) {
    cmsToneCurve* linear = cmsBuildGamma(nullptr, 1.0);
    const QByteArray profile = Saved(cmsCreateGrayProfile(cmsD50_xyY(), linear));
    cmsFreeToneCurve(linear);

    JpegContent content = Uniform(1, {55});
    content.profile = profile;
    // Linear 55/255 is 128 in sRGB.
    ExpectColour(Read(Jpeg(content)), {8, 8}, QColor(128, 128, 128), 2);
    content = Uniform(3, {55, 55, 200});
    content.profile = profile;
    ExpectColour(Read(Jpeg(content)), {8, 8}, QColor(55, 55, 200), 3);
}

TEST(ReaderColour, BrokenAndForeignProfilesAreIgnored) {
    const QByteArray good = DisplayP3();
    QByteArray longTags = good;
    for (qsizetype entry = 132; entry < 132 + 12 * qsizetype{good[131]}; entry += 12) {
        longTags.replace(entry + 8, 4, "\xff\xff\xff\xff");
    }
    const QByteArray profiles[] = {"no profile at all",
                                   good.first(100),
                                   good.first(good.size() / 2),
                                   longTags,
                                   QByteArray(good).replace(16, 4, "\xff\xff\xff\xff"),
                                   QByteArray(5000, '\xff'),
                                   TableProfile(4, [](const std::array<double, 4>&) {
                                       return cmsCIELab{50, 0, 0};
                                   })};
    for (const QByteArray& profile : profiles) {
        JpegContent content = Uniform(3, {200, 100, 50});
        content.profile = profile;
        ExpectColour(Read(Jpeg(content)), {8, 8}, QColor(200, 100, 50), 3);
    }
}

TEST(ReaderColour, AlphaIsLaidOverWhite) {
    QImage image(4, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(255, 0, 0, 255));
    image.setPixel(1, 0, qRgba(255, 0, 0, 0));
    image.setPixel(2, 0, qRgba(0, 0, 0, 128));
    image.setPixel(3, 0, qRgba(100, 200, 50, 51));
    for (const QImage::Format format : {QImage::Format_ARGB32, QImage::Format_RGBA64}) {
        const LoadedImage loaded = Read(Written(image.convertToFormat(format), "png"));
        EXPECT_EQ(loaded.pixels.Tile().format(), QImage::Format_RGB32);
        ExpectColours(loaded,
                      {{0, 0, "#ff0000"}, {1, 0, "#ffffff"}, {2, 0, "#7f7f7f"}, {3, 0, "#e0f4d6"}});
    }
}

}  // namespace kadrona::imaging::test
