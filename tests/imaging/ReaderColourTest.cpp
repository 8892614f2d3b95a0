#include <QColorSpace>

#include "ReaderFixture.h"
#include "WriterFixture.h"

namespace kadrona::imaging::test {

namespace {

/// A JPEG of one colour, or of one amount of each ink.
JpegContent Uniform(int channels, std::array<int, 4> values, const QByteArray& profile = {}) {
    JpegContent content;
    content.channels = channels;
    content.profile = profile;
    content.pixel = [channels, values](int, int, uchar* pixel) {
        std::copy_n(values.begin(), channels, pixel);
    };
    return content;
}

void ExpectJpeg(const JpegContent& content, QColor expected, int tolerance) {
    const LoadedImage loaded = Read(Jpeg(content));
    ExpectColour(loaded, {8, 8}, expected, tolerance);
    EXPECT_EQ(qAlpha(loaded.pixels.Tile().pixel(8, 8)), 255);
}

}  // namespace

// Colours of sRGB in wider spaces, by the matrices of CSS Color 4 and of Adobe RGB (1998).
TEST(ReaderColour, WideGamutProfilesAreBroughtToSrgb) {
    const std::tuple<QByteArray, QColor, QColor> cases[] = {
        {Profile("p3.icc"), {234, 51, 35}, {255, 0, 0}},
        {Profile("p3.icc"), {246, 202, 157}, {255, 200, 150}},
        {Profile("p3.icc"), {85, 148, 214}, {60, 150, 220}},
        {Profile("p3.icc"), {128, 128, 128}, {128, 128, 128}},
        {Profile("adobe.icc"), {219, 0, 0}, {255, 0, 0}},
        {Profile("adobe.icc"), {144, 255, 60}, {0, 255, 0}},
    };
    for (const auto& [profile, stored, expected] : cases) {
        const QImage plain = Filled({3, 3}, stored.rgb());
        for (const auto format : {QImage::Format_RGB32, QImage::Format_RGBA64}) {
            const QByteArray png = Written(plain.convertToFormat(format), "png");
            ExpectColour(Read(WithProfile(png, profile)), {1, 1}, expected, 2);
        }
        QImage wide = plain;
        wide.setColorSpace(QColorSpace::fromIccProfile(profile));
        ExpectColour(Read(Written(wide, "webp")), {1, 1}, expected, 4);
        // It stores Y'CbCr of 8 bits.
        ExpectJpeg(Uniform(3, {stored.red(), stored.green(), stored.blue()}, profile), expected, 4);
    }
}

TEST(ReaderColour, WideGamutProfilesGiveWhatTheToolOfLittleCmsSays) {
    if (!IsInstalled(QStringLiteral("transicc"))) {
        GTEST_SKIP() << "transicc is not installed";
    }
    constexpr int Steps = 6;
    constexpr int Step = 255 / (Steps - 1);
    const auto colour = [](int place) {
        return qRgb(place % Steps * Step, place / Steps % Steps * Step,
                    place / Steps / Steps * Step);
    };
    const QImage colours =
        Painted({Steps * Steps * Steps, 1}, [&](int x, int) { return colour(x); });
    for (const auto& [name, intent] :
         {std::pair("p3.icc", "-t1"), {"adobe.icc", "-t1"}, {"perceptual.icc", "-t0"}}) {
        QByteArray numbers;
        for (int x = 0; x < colours.width(); ++x) {
            const QRgb rgb = colour(x);
            numbers += QByteArray::number(qRed(rgb)) + ' ' + QByteArray::number(qGreen(rgb)) + ' ' +
                       QByteArray::number(qBlue(rgb)) + '\n';
        }
        QProcess tool;
        tool.start(QStringLiteral("transicc"),
                   {QStringLiteral("-n"), QStringLiteral("-s"), QStringLiteral("-b"),
                    QString::fromLatin1(intent),
                    QStringLiteral("-i" KADRONA_TEST_PROFILES) + QString::fromLatin1(name),
                    QStringLiteral("-o*sRGB")});
        tool.write(numbers);
        tool.closeWriteChannel();
        ASSERT_TRUE(tool.waitForFinished());
        const QList<QByteArray> said = tool.readAllStandardOutput().simplified().split(' ');
        ASSERT_EQ(said.size(), 3 * colours.width());
        for (const auto format : {QImage::Format_RGB32, QImage::Format_RGBA64}) {
            const QByteArray png = Written(colours.convertToFormat(format), "png");
            const LoadedImage loaded = Read(WithProfile(png, Profile(name)));
            for (qsizetype x = 0; x < colours.width(); ++x) {
                const QRgb rgb = loaded.pixels.Tile().pixel(int(x), 0);
                EXPECT_NEAR(qRed(rgb), said[3 * x].toDouble(), 1) << name << ' ' << x;
                EXPECT_NEAR(qGreen(rgb), said[3 * x + 1].toDouble(), 1) << name << ' ' << x;
                EXPECT_NEAR(qBlue(rgb), said[3 * x + 2].toDouble(), 1) << name << ' ' << x;
            }
        }
    }
}

// Chunks of PNG: 100000 times the gamma of the file; white, red, green and blue.
TEST(ReaderColour, AGammaOfPngIsThatOfSrgbWhereItIsMeantSo) {
    const QByteArray png = Written(Filled({1, 1}, qRgb(20, 55, 200)), "png");
    const QByteArray plain = png.first(33) + png.mid(png.indexOf("IDAT") - 4);
    const auto primaries = [](std::initializer_list<quint32> values) {
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += BigEndian(value);
        }
        return bytes;
    };
    const QByteArray srgb = primaries({31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
    const QByteArray adobe = primaries({31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000});
    const auto gamma = [](const QByteArray& png, quint32 value) {
        return WithChunk(png, "gAMA", BigEndian(value));
    };
    const QByteArray meant = gamma(plain, 45455);
    for (const QByteArray& same : {meant, WithChunk(meant, "cHRM", srgb), gamma(plain, 0),
                                   gamma(WithChunk(plain, "sRGB", QByteArray(1, '\0')), 9)}) {
        ExpectColours(Read(same), {{0, 0, "#1437c8"}});
    }
    ExpectColour(Read(gamma(plain, 100'000)), {0, 0}, QColor(79, 128, 229), 2);
    EXPECT_LT(Read(WithChunk(meant, "cHRM", adobe)).pixels.Tile().pixelColor(0, 0).red(), 10);
}

TEST(ReaderColour, TableProfilesAreApplied) {
    const QByteArray profile = Profile("lightness.icc");
    const QByteArray png = Written(Filled({3, 3}, qRgb(255, 0, 0)), "png");
    ExpectColour(Read(WithProfile(png, profile)), {1, 1}, Qt::white, 1);
    // Beside one of steps, which is not looked at.
    QByteArray two = Profile("perceptual.icc");
    const std::string shown = Colour(Read(WithProfile(png, two)), 1, 1);
    EXPECT_NE(shown, "#ff0000");
    EXPECT_EQ(Colour(Read(WithProfile(png, two.replace("A2B1", "D2B0"))), 1, 1), shown);
    ExpectJpeg(Uniform(3, {0, 255, 255}, profile), Qt::black, 2);
}

TEST(ReaderColour, InksWithoutAProfileAreMultipliedOut) {
    const auto expect = [](bool inverted, bool ycck, std::array<int, 4> values, QColor expected) {
        JpegContent content = Uniform(4, values);
        content.adobeMarker = inverted;
        content.ycck = ycck;
        ExpectJpeg(content, expected, ycck ? 3 : 1);
    };
    // Adobe: 255 is no ink.
    expect(true, false, {255, 255, 255, 255}, Qt::white);
    expect(true, false, {0, 255, 255, 255}, Qt::cyan);
    expect(true, false, {255, 255, 255, 51}, QColor(51, 51, 51));
    expect(true, true, {255, 0, 255, 255}, Qt::magenta);
    expect(true, true, {200, 100, 50, 128}, QColor(100, 50, 25));
    // Without Adobe's marker 0 is no ink.
    expect(false, false, {0, 0, 0, 0}, Qt::white);
    expect(false, false, {0, 0, 255, 0}, Qt::yellow);
}

TEST(ReaderColour, InksAreConvertedByTheirProfile) {
    const QByteArray profile = Profile("inks.icc");
    ExpectJpeg(Uniform(4, {255, 255, 255, 255}, profile), Qt::white, 1);
    // L* 50.2 is 120 in sRGB; multiplied out it would be 128.
    ExpectJpeg(Uniform(4, {255, 255, 255, 128}, profile), QColor(120, 120, 120), 2);
    JpegContent black = Uniform(4, {0, 0, 0, 255}, profile);
    black.adobeMarker = false;
    ExpectJpeg(black, Qt::black, 1);
}

TEST(ReaderColour, GreyProfilesBelongToGreyPictures) {
    const QByteArray profile = Profile("grey.icc");
    // Linear 55/255 is 128 in sRGB.
    ExpectJpeg(Uniform(1, {55}, profile), QColor(128, 128, 128), 2);
    ExpectJpeg(Uniform(3, {55, 55, 200}, profile), QColor(55, 55, 200), 3);
}

TEST(ReaderColour, BrokenAndForeignProfilesAreIgnored) {
    const QByteArray good = Profile("p3.icc");
    QByteArray longTags = good;
    for (qsizetype entry = 132; entry < 132 + 12 * qsizetype{good[131]}; entry += 12) {
        longTags.replace(entry + 8, 4, "\xff\xff\xff\xff");
    }
    for (const QByteArray& profile :
         {QByteArray("no profile at all"), good.first(100), good.first(good.size() / 2), longTags,
          QByteArray(good).replace(16, 4, "\xff\xff\xff\xff"), QByteArray(5000, '\xff'),
          Profile("inks.icc")}) {
        ExpectJpeg(Uniform(3, {200, 100, 50}, profile), QColor(200, 100, 50), 3);
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
