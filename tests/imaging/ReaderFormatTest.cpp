#include <QPainter>
#include <algorithm>
#include <span>

#include "ReaderFixture.h"
#include "WriterFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

namespace {

constexpr QColor Mark(200, 100, 50);

int ResolutionOf(const QByteArray& bytes) {
    return Read(bytes).resolution.value;
}

QByteArray SmallTiff(QList<TiffEntry> more) {
    more << Short(0x100, 1) << Short(0x101, 1) << Short(0x102, 8) << Short(0x103, 1)
         << Short(0x106, 1) << Short(0x116, 1);
    return Tiff(more, QByteArray(1, '\x80'));
}

QByteArray ExifResolution(quint32 resolution, quint16 unit) {
    return Tiff({Rational(0x11a, resolution), Rational(0x11b, resolution), Short(0x128, unit)});
}

// Six grey levels far enough apart for lossy formats: A is 0, B is 50 ...
constexpr int LevelStep = 50;
constexpr int Columns = 3;
constexpr int Rows = 2;

int LevelAt(int x, int y) {
    return (y * Columns + x) * LevelStep;
}

/// The picture as letters, rows separated by a slash.
std::string Letters(const LoadedImage& loaded) {
    std::string letters;
    for (int y = 0; y < loaded.pixels.Height(); ++y) {
        letters += y > 0 ? "/" : "";
        for (int x = 0; x < loaded.pixels.Width(); ++x) {
            const int level = qRed(loaded.pixels.Tile().pixel(x, y));
            letters += static_cast<char>('A' + (level + LevelStep / 2) / LevelStep);
        }
    }
    return letters;
}

QImage LetterImage() {
    return Painted({Columns, Rows},
                   [](int x, int y) { return qRgb(LevelAt(x, y), LevelAt(x, y), LevelAt(x, y)); });
}

QByteArray Exif(quint16 orientation) {
    return Tiff({Short(0x112, orientation)});
}

QByteArray LetterJpeg(const QByteArray& exif) {
    JpegContent content;
    content.size = {Columns, Rows};
    content.channels = 1;
    content.pixel = [](int x, int y, uchar* pixel) { *pixel = static_cast<uchar>(LevelAt(x, y)); };
    content.exif = exif;
    return Jpeg(content);
}

// EXIF 2.3, tag 0x0112, applied to ABC/DEF.
constexpr std::pair<quint16, const char*> Cases[] = {
    {1, "ABC/DEF"},  {2, "CBA/FED"},  {3, "FED/CBA"},  {4, "DEF/ABC"}, {5, "AD/BE/CF"},
    {6, "DA/EB/FC"}, {7, "FC/EB/DA"}, {8, "CF/BE/AD"}, {0, "ABC/DEF"}, {9, "ABC/DEF"},
};

}  // namespace

TEST(ReaderFormat, EveryFormatGivesThePixelsThatWereWritten) {
    QImage image = Filled({5, 4}, Mark.rgb());
    image.setPixelColor(4, 0, Qt::blue);
    image.setPixelColor(0, 3, Qt::green);
    for (const char* format : {"png", "tiff", "bmp", "ico", "webp"}) {
        SCOPED_TRACE(format);
        const LoadedImage loaded = Read(Written(image, format));
        EXPECT_EQ(loaded.pixels.Size(), QSize(5, 4));
        EXPECT_EQ(loaded.pixels.Tile().format(), QImage::Format_RGB32);
        EXPECT_EQ(Colour(loaded, 2, 2), Mark.name().toStdString());
        ExpectColours(loaded, {{4, 0, "#0000ff"}, {0, 3, "#00ff00"}});
    }
    const QImage indexed = image.convertToFormat(QImage::Format_Indexed8);
    for (const char* format : {"png", "tiff", "bmp"}) {
        EXPECT_EQ(Colour(Read(Written(indexed, format)), 4, 0), "#0000ff") << format;
    }
    EXPECT_EQ(Colour(Read(Gif({1, 0})), 0, 0), "#ff0000") << "the first picture of two";
}

TEST(ReaderFormat, SixteenBitsAreRoundedToTheNearest) {
    // 8 bits hold multiples of 257; half of that is between two.
    const std::pair<quint16, int> samples[] = {
        {0, 0},   {128, 0},           {129, 1},           {385, 1},
        {386, 2}, {65535 - 129, 254}, {65535 - 128, 255}, {65535, 255}};
    for (const auto& [stored, expected] : samples) {
        SCOPED_TRACE(stored);
        QImage image(1, 1, QImage::Format_RGBX64);
        image.setPixelColor(0, 0, QColor::fromRgba64(stored, 65535, stored));
        ExpectColour(Read(Written(image, "png")), {}, QColor(expected, 255, expected), 0);
        ExpectColour(Read(Written(image, "tiff")), {}, QColor(expected, 255, expected), 0);
        QImage grey(1, 1, QImage::Format_Grayscale16);
        *reinterpret_cast<quint16*>(grey.bits()) = stored;
        ExpectColour(Read(Written(grey, "png")), {}, QColor(expected, expected, expected), 0);
    }
}

TEST(ReaderFormat, DeepTiffsAreReadInBands) {
    constexpr QSize TwoBands(1500, 1400);
    QImage picture(TwoBands, QImage::Format_RGBA64);
    const std::span pixels(reinterpret_cast<QRgba64*>(picture.bits()),
                           size_t(TwoBands.width()) * TwoBands.height());
    for (size_t i = 0; i < pixels.size(); ++i) {
        const auto part = quint16(65535 * i / pixels.size());
        pixels[i] = qRgba64(part, quint16(i % 1500 * 40), 9999, quint16(20'000 + part / 2));
    }
    for (const auto format : {QImage::Format_RGBX64, QImage::Format_RGBA64,
                              QImage::Format_RGBA64_Premultiplied, QImage::Format_Grayscale16}) {
        QImage stored = picture.convertToFormat(format);
        if (format == QImage::Format_RGBA64_Premultiplied) {  // which the toolkit does wrongly
            std::transform(pixels.begin(), pixels.end(), reinterpret_cast<QRgba64*>(stored.bits()),
                           [](QRgba64 pixel) { return pixel.premultiplied(); });
        }
        const LoadedImage loaded = Read(Written(stored, "tiff"));
        QImage expected(TwoBands, QImage::Format_RGB32);
        expected.fill(Qt::white);
        QPainter(&expected).drawImage(0, 0, stored);
        EXPECT_LE(LargestDifference(loaded.pixels.ToImage(), expected), 1) << format;
    }
}

TEST(ReaderFormat, ResolutionIsWhatTheFileSays) {
    const QByteArray png = Written(Filled({1, 1}, Mark.rgb()), "png");
    const QByteArray plainPng = png.first(33) + png.mid(png.indexOf("IDAT") - 4);
    EXPECT_EQ(ResolutionOf(plainPng), 0);
    const auto density = [&](quint32 dots, char unit) {
        return WithChunk(plainPng, "pHYs", BigEndian(dots) + BigEndian(dots) + QByteArray(1, unit));
    };
    for (const auto& [dots, resolution] :
         {std::pair(11811U, 300), {3780U, 96}, {0U, 0}, {0xffffffffU, 0}}) {
        EXPECT_EQ(ResolutionOf(density(dots, 1)), resolution) << dots;
    }
    EXPECT_EQ(ResolutionOf(density(11811, 0)), 0) << "an aspect ratio";
    EXPECT_EQ(ResolutionOf(WithChunk(plainPng, "eXIf", ExifResolution(240, 2))), 240);

    EXPECT_EQ(ResolutionOf(SmallTiff({})), 0);
    const TiffEntry make{0x10f, 2, "Kamera"_ba};  // alone it makes no raw file
    EXPECT_EQ(ResolutionOf(SmallTiff({make, Rational(0x11a, 600), Short(0x128, 2)})), 600);
    EXPECT_EQ(ResolutionOf(SmallTiff({Rational(0x11a, 2362, 20), Short(0x128, 3)})), 300);
    EXPECT_EQ(ResolutionOf(SmallTiff({Rational(0x11a, 300), Short(0x128, 1)})), 0);
    EXPECT_EQ(ResolutionOf(SmallTiff({Rational(0x11a, 300, 0), Short(0x128, 2)})), 0);

    QImage image = Filled({1, 1}, Mark.rgb());
    image.setDotsPerMeterX(23622);
    image.setDotsPerMeterY(23622);
    EXPECT_EQ(ResolutionOf(Written(image, "bmp")), 600);
}

TEST(ReaderFormat, ResolutionOfJpegIsThatOfJfifElseOfExif) {
    const auto resolution = [](int unit, int density, const QByteArray& exif) {
        JpegContent content;
        content.densityUnit = unit;
        content.density = density;
        content.exif = exif;
        return ResolutionOf(Jpeg(content));
    };
    EXPECT_EQ(resolution(0, 1, {}), 0);
    EXPECT_EQ(resolution(1, 300, {}), 300);
    EXPECT_EQ(resolution(2, 118, {}), 300);
    EXPECT_EQ(resolution(0, 1, ExifResolution(240, 2)), 240);
    EXPECT_EQ(resolution(1, 300, ExifResolution(72, 2)), 300);
    EXPECT_EQ(resolution(1, 0, ExifResolution(72, 2)), 72);
}

TEST(ReaderFormat, TheLargestImageOfAnIconFile) {
    // A directory of two, of 16 bytes each behind 6: 2 by 2 red before 4 by 4 blue.
    const QImage blue = Filled({4, 4}, qRgb(0, 0, 255));
    const QByteArray small = Written(Filled({2, 2}, qRgb(255, 0, 0)), "ico");
    const QByteArray large = Written(blue, "ico");
    const auto entry = [](const QByteArray& icon, qsizetype offset) {
        return icon.mid(6, 12) + LittleEndian(static_cast<quint32>(offset));
    };
    // The large one as a bitmap, or as a PNG.
    for (const QByteArray& picture : {large.mid(22), Written(blue, "png")}) {
        QByteArray second = entry(large, 6 + 2 * 16 + small.size() - 22);
        second.replace(8, 4, LittleEndian(static_cast<quint32>(picture.size())));
        const LoadedImage loaded = Read(Packed<quint16>(0, 1, 2) + entry(small, 6 + 2 * 16) +
                                        second + small.mid(22) + picture);
        EXPECT_EQ(loaded.pixels.Size(), QSize(4, 4));
        EXPECT_EQ(Colour(loaded, 1, 1), "#0000ff");
    }
}

using ReaderOrientation = WriterTest;

TEST_F(ReaderOrientation, EveryFormatThatHasOneIsTurnedWhereAskedFor) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    const std::pair<const char*, QImage::Format> files[] = {
        {"a.jpg", QImage::Format_Grayscale8},    {"a.png", QImage::Format_RGB32},
        {"a.webp", QImage::Format_RGB32},        {"a.tif", QImage::Format_RGB32},
        {"grey.tif", QImage::Format_Grayscale8}, {"deep.tif", QImage::Format_RGBX64}};
    QStringList paths;
    const QString jxl = PathOf(u"a.jxl"_s);
    for (const auto& [name, format] : files) {
        paths.append(PathOf(QString::fromLatin1(name)));
        ASSERT_TRUE(LetterImage().convertToFormat(format).save(paths.last(), nullptr, 100));
    }
    for (const auto& [orientation, upright] : Cases) {
        RunProgram(u"exiftool"_s, QStringList{u"-n"_s, u"-overwrite_original"_s,
                                              u"-Orientation=%1"_s.arg(orientation)} +
                                      paths);
        QFile::remove(jxl);
        RunProgram(u"cjxl"_s, {PathOf(u"a.png"_s), jxl, u"-d"_s, u"0"_s});
        for (const QString& path :
             paths + QStringList(QFile::exists(jxl) ? jxl : PathOf(u"a.png"_s))) {
            EXPECT_EQ(Letters(ReadImageFile(path)), upright) << qPrintable(path) << orientation;
            ReadOptions asItIs;
            asItIs.applyOrientation = false;
            EXPECT_EQ(Letters(ReadImageFile(path, asItIs)), "ABC/DEF") << qPrintable(path);
        }
    }
}

TEST_F(ReaderOrientation, HostileExifIsIgnored) {
    const QByteArray good = Exif(6);
    std::vector<QByteArray> blocks{
        QByteArray(good).replace(4, 4, "\xff\xff\xff\xff"),  // a directory far away
        QByteArray(good).replace(8, 2, "\xff\xff"),          // of many entries
        // One that lies over itself, and a rational far outside.
        Tiff({Short(0x112, 6), {0x11a, 5, QByteArray(4, '\xff')}})};
    for (qsizetype size = 1; size < good.size() - 4; ++size) {
        blocks.push_back(good.first(size));
    }
    for (const QByteArray& block : blocks) {
        EXPECT_EQ(Letters(Read(LetterJpeg(block))), "ABC/DEF") << block.toHex().toStdString();
    }
}

}  // namespace kadrona::imaging::test
