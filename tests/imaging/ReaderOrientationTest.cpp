#include "ReaderFixture.h"

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

QByteArray LetterPng(quint16 orientation) {
    return WithChunk(Written(LetterImage(), "png"), "eXIf", Exif(orientation));
}

QByteArray LetterTiff(quint16 orientation, quint16 bits, quint16 channels) {
    QByteArray pixels;
    for (int i = 0; i < Columns * Rows; ++i) {
        // Both bytes of a sample of 16 bits are the same.
        pixels += QByteArray(channels * bits / 8, static_cast<char>(i * LevelStep));
    }
    const QByteArray depths = LittleEndian(bits).repeated(channels);
    return Tiff({Short(0x100, Columns), Short(0x101, Rows), TiffEntry{0x102, 3, depths},
                 Short(0x103, 1), Short(0x106, channels == 1 ? 1 : 2), Short(0x112, orientation),
                 Short(0x115, channels), Short(0x116, Rows)},
                pixels);
}

QByteArray LetterWebP(quint16 orientation) {
    constexpr qsizetype RiffHeaderSize = 12;
    constexpr char HasExif = 8;
    const QByteArray chunks = Written(LetterImage(), "webp").mid(RiffHeaderSize);
    const QByteArray exif = Exif(orientation);
    // The canvas is stored less one, 24 bits each.
    const QByteArray extended = "VP8X" + LittleEndian(quint32{10}) + QByteArray(1, HasExif) +
                                QByteArray(3, '\0') + QByteArray("\2\0\0\1\0\0", 6);
    const QByteArray content =
        "WEBP" + extended + chunks + "EXIF" + LittleEndian(quint32(exif.size())) + exif;
    return "RIFF" + LittleEndian(quint32(content.size())) + content;
}

// EXIF 2.3, tag 0x0112, applied to ABC/DEF.
constexpr std::pair<quint16, const char*> Cases[] = {
    {1, "ABC/DEF"},  {2, "CBA/FED"},  {3, "FED/CBA"},  {4, "DEF/ABC"}, {5, "AD/BE/CF"},
    {6, "DA/EB/FC"}, {7, "FC/EB/DA"}, {8, "CF/BE/AD"}, {0, "ABC/DEF"}, {9, "ABC/DEF"},
};

}  // namespace

TEST(ReaderOrientation, EveryOrientationOfEveryFormatThatHasOne) {
    for (const auto& [orientation, upright] : Cases) {
        SCOPED_TRACE(orientation);
        EXPECT_EQ(Letters(Read(LetterJpeg(Exif(orientation)))), upright);
        EXPECT_EQ(Letters(Read(LetterPng(orientation))), upright);
        EXPECT_EQ(Letters(Read(LetterWebP(orientation))), upright);
        EXPECT_EQ(Letters(Read(LetterTiff(orientation, 8, 1))), upright);
        EXPECT_EQ(Letters(Read(LetterTiff(orientation, 8, 3))), upright);
        EXPECT_EQ(Letters(Read(LetterTiff(orientation, 16, 3))), upright);
    }
}

TEST(ReaderOrientation, LeavesThePictureWhereNotAskedFor) {
    ReadOptions options;
    options.applyOrientation = false;
    EXPECT_EQ(Letters(Read(LetterJpeg(Exif(6)), options)), "ABC/DEF");
    EXPECT_EQ(Letters(Read(LetterTiff(6, 8, 3), options)), "ABC/DEF");
    EXPECT_EQ(Letters(Read(LetterPng(6), options)), "ABC/DEF");
}

TEST(ReaderOrientation, HostileExifIsIgnored) {
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
