#include <QColorSpace>
#include <cmath>

#include "WriterFixture.h"
#include "imaging/writing/FormatWriting.h"
#include "tests/support/FileSizeLimit.h"

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

QStringList FindLosslessFiles() {
    QStringList files{u"a.png"_s, u"a.bmp"_s, u"a.tif"_s};
    if (IsInstalled(u"pdfimages"_s)) {
        files.append(u"a.pdf"_s);
    }
    return files;
}

const QStringList LosslessFiles = FindLosslessFiles();

QString ErrorOf(const QString& path, const Pixels& pixels, DotsPerInch resolution = {300}) {
    try {
        WriteImageFile(path, pixels, resolution);
    } catch (const WriteError& error) {
        return error.Text();
    }
    return {};
}

}  // namespace

TEST_F(WriterTest, LosslessFormatsKeepEveryPixelOfEverySize) {
    for (const QSize size : {QSize(1, 1), QSize(7, 5), QSize(2, 3), QSize(33, 65), QSize(1, 3000),
                             QSize(3000, 1), QSize(401, 301)}) {
        const QImage image = TestPicture(size.width(), size.height());
        for (const QString& name : LosslessFiles) {
            SCOPED_TRACE(qPrintable(u"%1 %2x%3"_s.arg(name).arg(size.width()).arg(size.height())));
            WriteImageFile(PathOf(name), Pixels(image), {300});
            EXPECT_TRUE(testing::SamePixels(ReadBack(name), image));
        }
    }
}

TEST_F(WriterTest, ChannelsKeepTheirPlaces) {
    QImage image(3, 1, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(255, 0, 1));
    image.setPixel(1, 0, qRgb(2, 254, 0));
    image.setPixel(2, 0, qRgb(0, 3, 253));
    for (const QString& name : LosslessFiles) {
        WriteImageFile(PathOf(name), Pixels(image), {300});
        const QImage read = ReadBack(name);
        EXPECT_EQ(read.pixel(0, 0), qRgb(255, 0, 1)) << qPrintable(name);
        EXPECT_EQ(read.pixel(1, 0), qRgb(2, 254, 0)) << qPrintable(name);
        EXPECT_EQ(read.pixel(2, 0), qRgb(0, 3, 253)) << qPrintable(name);
    }
}

TEST_F(WriterTest, GridIsWrittenAsThePictureItStandsFor) {
    const QImage tile = TestPicture(37, 29);
    const Pixels grid(tile, 3, 4);
    for (const QString& name : LosslessFiles) {
        WriteImageFile(PathOf(name), grid, {300});
        SCOPED_TRACE(qPrintable(name));
        EXPECT_TRUE(testing::SamePixels(ReadBack(name), Unrolled(tile, 3, 4)));
    }
}

TEST_F(WriterTest, PartOfAPictureIsWrittenWithItsOwnRows) {
    const QImage whole = TestPicture(40, 30);
    const uchar* corner = whole.constScanLine(7) + 5 * sizeof(QRgb);
    const QImage part(corner, 11, 13, whole.bytesPerLine(), QImage::Format_RGB32);
    for (const QString& name : LosslessFiles) {
        WriteImageFile(PathOf(name), Pixels(part), {300});
        SCOPED_TRACE(qPrintable(name));
        EXPECT_TRUE(testing::SamePixels(ReadBack(name), whole.copy(5, 7, 11, 13)));
    }
}

TEST_F(WriterTest, AlphaIsLaidOverWhite) {
    QImage image(3, 1, QImage::Format_ARGB32_Premultiplied);
    image.setPixel(0, 0, qRgba(0, 0, 0, 0));
    image.setPixel(1, 0, qRgba(51, 0, 0, 51));  // a fifth of pure red
    image.setPixel(2, 0, qRgba(9, 8, 7, 255));
    for (const QString& name : LosslessFiles) {
        WriteImageFile(PathOf(name), Pixels(image, 2, 1), {300});
        const QImage read = ReadBack(name);
        EXPECT_EQ(read.pixel(0, 0), qRgb(255, 255, 255)) << qPrintable(name);
        EXPECT_EQ(read.pixel(4, 0), qRgb(255, 204, 204)) << qPrintable(name);
        EXPECT_EQ(read.pixel(5, 0), qRgb(9, 8, 7)) << qPrintable(name);
    }
}

TEST_F(WriterTest, ResolutionReadsBackAsTheIntegerGiven) {
    const Pixels pixels(TestPicture(8, 8));
    for (const int dotsPerInch : {72, 96, 254, 299, 300, 301, 305, 600, 1200, 2540}) {
        for (const QString& extension : RasterExtensions) {
            const QString name = u"a."_s + extension;
            WriteImageFile(PathOf(name), pixels, {dotsPerInch});
            const QImage read = ReadBack(name);
            EXPECT_EQ(std::lround(read.dotsPerMeterX() * 0.0254), dotsPerInch) << qPrintable(name);
            EXPECT_EQ(std::lround(read.dotsPerMeterY() * 0.0254), dotsPerInch) << qPrintable(name);
        }
    }
}

TEST(WriterResolution, EveryResolutionSurvivesDotsPerMetre) {
    for (int dotsPerInch = 1; dotsPerInch <= 3000; ++dotsPerInch) {
        ASSERT_EQ(std::lround(DotsPerMetre({dotsPerInch}) * 0.0254), dotsPerInch);
    }
    EXPECT_EQ(DotsPerMetre({300}), 11811);
    EXPECT_EQ(DotsPerMetre({72}), 2835);
}

TEST_F(WriterTest, MarksThePictureAsSrgb) {
    for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
        const QString file = QString::fromLatin1(name);
        WriteImageFile(PathOf(file), Pixels(TestPicture(8, 8)), {300});
        EXPECT_EQ(ReadBack(file).colorSpace(), QColorSpace(QColorSpace::SRgb)) << name;
    }
}

TEST_F(WriterTest, ExtensionChoosesTheFormatWhateverItsCase) {
    const Pixels pixels(TestPicture(8, 8));
    const QList<QPair<QString, QByteArray>> signatures{
        {u"A.JPG"_s, "\xff\xd8\xff"}, {u"b.Jpeg"_s, "\xff\xd8\xff"},
        {u"c.PNG"_s, "\x89PNG"},      {u"d.bmP"_s, "BM"},
        {u"e.TIF"_s, "II*"},          {u"photo.jpg.TIFF"_s, "II*"},
        {u"f.Pdf"_s, "%PDF-1.4"},     {u"g.JP2"_s, QByteArray("\0\0\0\xcjP  ", 8)}};
    for (const auto& [name, signature] : signatures) {
        WriteImageFile(PathOf(name), pixels, {300});
        EXPECT_TRUE(Bytes(name).startsWith(signature)) << qPrintable(name);
    }
}

TEST_F(WriterTest, RefusesWhatNoFormatCanHold) {
    const Pixels pixels(TestPicture(1000, 1000));
    const QString unknown = ErrorOf(PathOf(u"Bild.webp"_s), pixels);
    EXPECT_TRUE(unknown.contains(u"Bild.webp"_s)) << qPrintable(unknown);
    for (const QString& extension : WritableExtensions()) {
        EXPECT_TRUE(unknown.contains(u'.' + extension)) << qPrintable(unknown);
    }
    EXPECT_FALSE(ErrorOf(PathOf(u"ohne"_s), pixels).isEmpty());
    EXPECT_TRUE(ErrorOf(PathOf(u"leer.png"_s), Pixels()).contains(u"leer"_s));

    const QImage& tile = pixels.Tile();
    EXPECT_TRUE(ErrorOf(PathOf(u"breit.jpg"_s), Pixels(tile, 66, 1)).contains(u"65500"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"hoch.jpg"_s), Pixels(tile, 1, 66)).contains(u"65500"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"fein.jpg"_s), pixels, {65536}).contains(u"65535"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"breit.jp2"_s), Pixels(tile, 66, 1)).contains(u"65535"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"fein.jp2"_s), pixels, {65536}).contains(u"65535"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"gross.pdf"_s), Pixels(tile, 40, 40)).contains(u"4 GiB"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"gross.bmp"_s), Pixels(tile, 40, 40)).contains(u"4 GiB"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"gross.tif"_s), Pixels(tile, 40, 40)).contains(u"4 GiB"_s));
    EXPECT_TRUE(ErrorOf(PathOf(u"fehlt/a.jpg"_s), pixels).contains(u"a.jpg"_s));
    EXPECT_EQ(Files(), QStringList());
}

TEST_F(WriterTest, FullDiskLeavesTheOldFileAndNoOther) {
    const QByteArray old("what was there before");
    for (const QString& extension : WritableExtensions()) {
        const QString name = u"alt."_s + extension;
        SCOPED_TRACE(qPrintable(name));
        QFile file(PathOf(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(old);
        file.close();
        // Fails in the first bytes, in the midst of the pixels, and when the file is closed.
        for (const rlim_t limit : {rlim_t{10}, rlim_t{5000}}) {
            const FileSizeLimit full(limit);
            const QString error = ErrorOf(file.fileName(), Pixels(TestPicture(200, 200)));
            EXPECT_TRUE(error.contains(name)) << qPrintable(error);
            EXPECT_TRUE(error.contains(u"zu groß"_s)) << qPrintable(error);
        }
        {
            const FileSizeLimit full(50);
            EXPECT_NE(ErrorOf(file.fileName(), Pixels(TestPicture(2, 2))), QString());
        }
        EXPECT_EQ(Bytes(name), old);
        EXPECT_EQ(Files(), QStringList(name));
        ASSERT_TRUE(file.remove());
    }
}

TEST_F(WriterTest, BmpRowsAreFilledUpToFourBytesAndStandUpsideDown) {
    QImage image(1, 2, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(0x11, 0x22, 0x33));
    image.setPixel(0, 1, qRgb(0x44, 0x55, 0x66));
    WriteImageFile(PathOf(u"a.bmp"_s), Pixels(image), {300});
    EXPECT_EQ(Bytes(u"a.bmp"_s).toHex(),
              "424d3e0000000000000036000000"  // "BM", 62 bytes, pixels from byte 54 on
              "280000000100000002000000010018000000000008000000232e0000232e00000000000000000000"
              "66554400"
              "33221100");
}

}  // namespace kadrona::imaging
