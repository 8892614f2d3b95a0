#include "ReaderFixture.h"
#include "WriterFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

namespace {

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
    for (const auto& [name, format] : files) {
        paths.append(PathOf(QString::fromLatin1(name)));
        ASSERT_TRUE(LetterImage().convertToFormat(format).save(paths.last(), nullptr, 100));
    }
    for (const auto& [orientation, upright] : Cases) {
        RunProgram(u"exiftool"_s, QStringList{u"-n"_s, u"-overwrite_original"_s,
                                              u"-Orientation=%1"_s.arg(orientation)} +
                                      paths);
        for (const QString& path : paths) {
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
