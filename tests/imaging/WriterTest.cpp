#include <QPainter>
#include <cmath>
#include <vector>

#include "WriterFixture.h"
#include "imaging/writing/FormatWriting.h"
#include "platform/AtomicFile.h"
#include "tests/support/Errors.h"
#include "tests/support/FileSizeLimit.h"

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

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
    const Pixels arranged(Arrangement{{100, 90},
                                      {whole, TestPicture(20, 9)},
                                      {{0, {3, 5}}, {0, {50, 5}}, {1, {80, 81}}, {0, {3, 40}}},
                                      {{{45, 0, 2, 200}, qRgb(10, 128, 200)}}});
    const QImage part(whole.constScanLine(7) + 5 * sizeof(QRgb), 11, 13, whole.bytesPerLine(),
                      QImage::Format_RGB32);
    cases.push_back({"rows of another length", Pixels(part), whole.copy(5, 7, 11, 13)});
    QImage clear = Picture({"..b"}, QImage::Format_ARGB32_Premultiplied);
    QImage overWhite = Picture({"w-b"});
    clear.setPixel(1, 0, qRgba(51, 0, 0, 51));  // a fifth of pure red
    overWhite.setPixel(1, 0, qRgb(255, 204, 204));
    cases.push_back({"alpha", Pixels(clear, 2, 1), Unrolled(overWhite, 2, 1)});
    QStringList names{u"a.png"_s, u"a.bmp"_s, u"a.tif"_s};
    if (IsInstalled(u"pdfimages"_s)) {
        names.append(u"a.pdf"_s);
    }
    for (const Case& sample : cases) {
        for (const QString& name : names) {
            WriteImageFile(PathOf(name), sample.written, {300});
            EXPECT_TRUE(SamePixels(ReadBack(name), sample.read))
                << sample.what << ' ' << sample.read.width() << ' ' << qPrintable(name);
        }
    }
    QImage sheet(100, 90, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (const QPoint at : {QPoint(3, 5), QPoint(50, 5), QPoint(3, 40)}) {
        painter.drawImage(at, whole);
    }
    painter.drawImage(80, 81, TestPicture(20, 9));
    painter.fillRect(45, 0, 2, 90, qRgb(10, 128, 200));
    painter.end();
    EXPECT_TRUE(SamePixels(arranged.ToImage(), sheet));
    EXPECT_TRUE(SamePixels(arranged.Region({20, -3, 70, 60}, qRgb(0, 0, 0)).copy(0, 3, 70, 57),
                           sheet.copy(20, 0, 70, 57)));
    for (const QString& name : {u"a.png"_s, u"a.bmp"_s, u"a.tif"_s}) {
        WriteImageFile(PathOf(name), arranged, {300});
        EXPECT_TRUE(SamePixels(ReadBack(name), sheet)) << qPrintable(name);
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

    const Pixels wide(pixels.Tile(), 66, 1);
    const Pixels large(pixels.Tile(), 40, 40);
    const std::tuple<QString, Pixels, int, QString> cases[] = {
        {u"leer.png"_s, {}, 300, u"leer"_s},        {u"breit.jpg"_s, wide, 300, u"65500"_s},
        {u"fein.jpg"_s, pixels, 65536, u"65535"_s}, {u"breit.jp2"_s, wide, 300, u"65535"_s},
        {u"fein.jp2"_s, pixels, 65536, u"65535"_s}, {u"gross.pdf"_s, large, 300, u"4 GiB"_s},
        {u"gross.bmp"_s, large, 300, u"4 GiB"_s},   {u"gross.tif"_s, large, 300, u"4 GiB"_s},
        {u"fehlt/a.jpg"_s, pixels, 300, u"a.jpg"_s}};
    for (const auto& [name, picture, resolution, part] : cases) {
        EXPECT_TRUE(ErrorOf(PathOf(name), picture, {resolution}).contains(part))
            << qPrintable(name);
    }
    const Pixels high(pixels.Tile(), 1, 66);
    EXPECT_TRUE(ErrorOf(PathOf(u"hoch.jpg"_s), high).contains(u"65500"_s));
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
        platform::WriteFileAtomically(PathOf(name), old);
        // Fails in the first bytes, in the midst of the pixels, and when the file is closed.
        for (const auto& [limit, side] : {std::pair(10, 200), {5000, 200}, {50, 2}}) {
            const FileSizeLimit full(static_cast<rlim_t>(limit));
            const QString error = ErrorOf(PathOf(name), Pixels(TestPicture(side, side)));
            EXPECT_TRUE(error.contains(name) && error.contains(u"zu groß"_s)) << qPrintable(error);
        }
        EXPECT_EQ(Bytes(name), old);
        EXPECT_EQ(Files(), QStringList(name));
        ASSERT_TRUE(QFile::remove(PathOf(name)));
    }
}

TEST_F(WriterTest, BmpRowsAreFilledUpToFourBytesAndStandUpsideDown) {
    const QImage image =
        Painted({1, 2}, [](int, int y) { return y == 0 ? 0xff112233 : 0xff445566; });
    WriteImageFile(PathOf(u"a.bmp"_s), Pixels(image), {300});
    EXPECT_EQ(Bytes(u"a.bmp"_s).toHex(),
              "424d3e0000000000000036000000"  // "BM", 62 bytes, pixels from byte 54 on
              "280000000100000002000000010018000000000008000000232e0000232e00000000000000000000"
              "66554400"
              "33221100");
}

TEST_F(WriterTest, JpegDecodesToWhatPlainEncodingDecodesTo) {
    if (!IsInstalled(u"cjpeg"_s)) {
        GTEST_SKIP() << "cjpeg is not installed";
    }
    const struct {
        QSize tile;
        int columns;
        int rows;
        const char* what;
    } cases[] = {{{1, 1}, 1, 1, "one pixel"},
                 {{7, 5}, 1, 1, "below a block"},
                 {{70, 64}, 1, 1, "one strip"},
                 {{70, 65}, 1, 1, "one row more than a strip"},
                 {{1, 3000}, 1, 1, "more than a batch of strips, ends in full rows"},
                 {{3, 4101}, 1, 1, "more than two batches, ends in a part of a row"},
                 {{13, 64}, 3, 4, "every strip repeats"},
                 {{24, 40}, 2, 5, "rows repeat out of step with the strips"},
                 {{10, 12}, 2, 7, "every third copy begins a row; last row in part"},
                 {{9, 29}, 2, 4, "rows would repeat only after eight copies"},
                 {{5, 3}, 1, 900, "rows repeat in every strip"}};
    for (const auto& [size, columns, rows, what] : cases) {
        const QImage tile = TestPicture(size.width(), size.height());
        WriteImageFile(PathOf(u"a.jpg"_s), Pixels(tile, columns, rows), {300});
        // From top to bottom and without restart intervals.
        ASSERT_TRUE(Unrolled(tile, columns, rows).save(PathOf(u"plain.ppm"_s)));
        RunProgram(u"cjpeg"_s, {u"-quality"_s, u"95"_s, u"-sample"_s, u"1x1"_s, u"-outfile"_s,
                                PathOf(u"plain.jpg"_s), PathOf(u"plain.ppm"_s)});
        EXPECT_TRUE(SamePixels(ReadBack(u"a.jpg"_s), ReadBack(u"plain.jpg"_s))) << what;
    }
}

}  // namespace kadrona::imaging
