#include <cmath>
#include <vector>

#include "WriterFixture.h"
#include "imaging/writing/FormatWriting.h"
#include "tests/support/Errors.h"
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
    return TextOf<WriteError>([&] { WriteImageFile(path, pixels, resolution); });
}

}  // namespace

TEST_F(WriterTest, LosslessFormatsKeepEveryPixel) {
    struct Case {
        const char* what;
        Pixels written;
        QImage read;
    };
    std::vector<Case> cases;
    for (const QSize size : {QSize(1, 1), QSize(2, 3), QSize(33, 65), QSize(1, 3000),
                             QSize(3000, 1), QSize(401, 301)}) {
        const QImage image = TestPicture(size.width(), size.height());
        cases.push_back({"a size", Pixels(image), image});
    }
    const QImage whole = TestPicture(40, 30);
    cases.push_back({"a grid", Pixels(whole, 3, 4), Unrolled(whole, 3, 4)});
    const QImage part(whole.constScanLine(7) + 5 * sizeof(QRgb), 11, 13, whole.bytesPerLine(),
                      QImage::Format_RGB32);
    cases.push_back({"rows of another length", Pixels(part), whole.copy(5, 7, 11, 13)});
    QImage clear(3, 1, QImage::Format_ARGB32_Premultiplied);
    clear.setPixel(0, 0, qRgba(0, 0, 0, 0));
    clear.setPixel(1, 0, qRgba(51, 0, 0, 51));  // a fifth of pure red
    clear.setPixel(2, 0, qRgba(9, 8, 7, 255));
    QImage overWhite(3, 1, QImage::Format_RGB32);
    overWhite.setPixel(0, 0, qRgb(255, 255, 255));
    overWhite.setPixel(1, 0, qRgb(255, 204, 204));
    overWhite.setPixel(2, 0, qRgb(9, 8, 7));
    cases.push_back({"alpha", Pixels(clear, 2, 1), Unrolled(overWhite, 2, 1)});
    for (const Case& sample : cases) {
        for (const QString& name : LosslessFiles) {
            WriteImageFile(PathOf(name), sample.written, {300});
            EXPECT_TRUE(SamePixels(ReadBack(name), sample.read))
                << sample.what << ' ' << sample.read.width() << ' ' << qPrintable(name);
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

    const QImage strip = TestPicture(655, 1);
    EXPECT_EQ(ErrorOf(PathOf(u"gerade.jpg"_s), Pixels(strip, 100, 1)), QString());
}

TEST_F(WriterTest, FullDiskLeavesTheOldFileAndNoOther) {
    const QByteArray old("what was there before");
    // A format of each library.
    for (const char* extension : {"jpg", "png", "tif", "jp2", "pdf"}) {
        const QString name = u"alt."_s + QString::fromLatin1(extension);
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
