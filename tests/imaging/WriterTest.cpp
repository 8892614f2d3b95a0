#include <QPainter>
#include <cmath>
#include <numeric>
#include <vector>

#include "WriterFixture.h"
#include "imaging/writing/FormatWriting.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

namespace kadrona::imaging {

namespace {

QString ErrorOf(const QString& path, const Pixels& pixels, DotsPerInch resolution = {300}) {
    return TextOf<WriteError>([&] { WriteImageFile(path, pixels, resolution); });
}

// Every format in the eyes of every outside program that reads it: size, resolution, the name of
// the program and the colour space, each where the format has a place for it and the reader looks.

// With what the texts of PDF have to escape.
const QByteArray Software = "KDR (6) \\ Prof) by www.example";

/// What a reader has to say of a file of 74 by 135 pixels.
struct Reading {
    const char* reader;
    const char* extension;
    /// Stand before the file's path.
    QStringList arguments;
    /// Lines of its output or what they begin with, spaces counted once, parted by "|". For $dpi
    /// stand the dots per inch, for $dpm the dots per metre, for $by the program's name.
    const char* lines;
};

void PrintTo(const Reading& reading, std::ostream* stream) {
    *stream << reading.reader << ' ' << reading.extension;
}

const QStringList AllTags{u"-a"_s, u"-n"_s, u"-s"_s, u"-G1"_s};

// The deflate of TIFF is younger than the standard of 1992: it takes that for a fault.
const QStringList Validate{u"-s3"_s, u"-validate"_s, u"-a"_s, u"-warning"_s, u"-error"_s};

QStringList Format(const char* format) {
    return {u"-units"_s, u"PixelsPerInch"_s, u"-regard-warnings"_s, u"-format"_s,
            QString::fromLatin1(format)};
}

const Reading Readings[] = {
    {"exiftool", "jpg", AllTags,
     "[File] ImageWidth : 74|[File] ImageHeight : 135|[JFIF] ResolutionUnit : 1|"
     "[JFIF] XResolution : $dpi|[JFIF] YResolution : $dpi|[IFD0] ResolutionUnit : 2|"
     "[IFD0] XResolution : $dpi|[IFD0] YResolution : $dpi|[IFD0] Software : $by|"
     "[ExifIFD] ExifImageWidth : 74|[ExifIFD] ExifImageHeight : 135|[ExifIFD] ColorSpace : 1|"
     "[ICC_Profile] ProfileDescription : sRGB|[File] EncodingProcess : 0|"
     "[File] YCbCrSubSampling : 1 1"},
    {"exiftool", "jp2", AllTags,
     "[Jpeg2000] ImageWidth : 74|[Jpeg2000] ImageHeight : 135|[Jpeg2000] ColorSpace : 16|"
     "[Jpeg2000] CaptureXResolution : $dpk|[Jpeg2000] CaptureXResolutionUnit : 4|"
     "[Jpeg2000] CaptureYResolution : $dpk|[Jpeg2000] CaptureYResolutionUnit : 4|"
     "[IFD0] XResolution : $dpi|[IFD0] YResolution : $dpi|[IFD0] Software : $by|"
     "[ExifIFD] ExifImageWidth : 74|[ExifIFD] ExifImageHeight : 135"},
    {"exiftool", "tif", AllTags,
     "[IFD0] ImageWidth : 74|[IFD0] ImageHeight : 135|[IFD0] ResolutionUnit : 2|"
     "[IFD0] XResolution : $dpi|[IFD0] YResolution : $dpi|[IFD0] Orientation : 1|"
     "[IFD0] Software : $by|[ICC_Profile] ProfileDescription : sRGB"},
    {"exiftool", "png", AllTags,
     "[PNG] ImageWidth : 74|[PNG] ImageHeight : 135|[PNG-pHYs] PixelsPerUnitX : $dpm|"
     "[PNG-pHYs] PixelsPerUnitY : $dpm|[PNG-pHYs] PixelUnits : 1|[PNG] SRGBRendering : 0|"
     "[PNG] Software : $by"},
    {"exiftool", "bmp", AllTags,
     "[File] ImageWidth : 74|[File] ImageHeight : 135|[File] PixelsPerMeterX : $dpm|"
     "[File] PixelsPerMeterY : $dpm"},
    {"exiftool", "pdf", AllTags, "[PDF] PageCount : 1|[PDF] Creator : $by|[PDF] Producer : $by"},
    {"identify", "jpg", Format("%m %wx%h %x %y %[exif:Software] %[profile:icc]"),
     "JPEG 74x135 $dpi $dpi $by sRGB"},
    {"identify", "tif", Format("%m %wx%h %x %y %[tiff:software] %[profile:icc]"),
     "TIFF 74x135 $dpi $dpi $by sRGB"},
    {"identify", "png", Format("%m %wx%h %[fx:round(resolution.x)] %[Software] %[png:sRGB]"),
     "PNG 74x135 $dpi $by intent=0 (Perceptual Intent)"},
    {"identify", "bmp", Format("%m %wx%h %[colorspace]"), "BMP3 74x135 sRGB"},
    {"identify", "jp2", Format("%m %wx%h %[colorspace]"), "JP2 74x135 sRGB"},
    {"tiffinfo", "tif", QStringList(),
     "Resolution: $dpi, $dpi pixels/inch|ICC Profile: <present>, 459 bytes|Bits/Sample: 8|"
     "Photometric Interpretation: RGB color|Samples/Pixel: 3"},
    {"pdfinfo", "pdf", {}, "Creator: $by|Producer: $by|Pages: 1|Page size: $width x $height pts"},
    {"pdfimages", "pdf", {u"-list"_s}, "1 0 image 74 135 icc 3 8 image no 7 0 $dpi $dpi"},
    {"exiftool", "jpg", Validate, "OK"},
    {"exiftool", "jp2", Validate, "OK"},
    {"exiftool", "png", Validate, "OK"},
    {"exiftool", "bmp", Validate, "OK"},
    {"exiftool", "pdf", Validate, "OK"},
    {"djpeg", "jpg", {u"-strict"_s, u"-outfile"_s, u"/dev/null"_s}, ""},
    {"pngcheck", "png", {u"-v"_s}, "chunk sRGB"},
    {"qpdf", "pdf", {u"--check"_s}, "PDF Version: 1.4"},
    {"opj_dump", "jp2", {u"-i"_s}, "x1=74, y1=135|numcomps=3"},
};

QString Completed(const char* lines, int dotsPerInch) {
    const auto points = [dotsPerInch](int pixels) {
        return QString::number(pixels * 72.0 / dotsPerInch, 'g', 6);
    };
    return QString::fromLatin1(lines)
        .replace(u"$by"_s, QString::fromLatin1(Software))
        .replace(u"$dpi"_s, QString::number(dotsPerInch))
        .replace(u"$dpm"_s, QString::number(qRound(dotsPerInch / 0.0254)))
        .replace(u"$dpk"_s, QString::number(dotsPerInch / 254.0, 'g', 7))
        .replace(u"$width"_s, points(74))
        .replace(u"$height"_s, points(135));
}

/// The root of the mean square of all channels' differences.
double Deviation(const QImage& read, const QImage& original) {
    EXPECT_EQ(read.size(), original.size());
    const QImage actual = read.convertToFormat(original.format());
    const double squares = std::transform_reduce(
        actual.constBits(), actual.constBits() + actual.sizeInBytes(), original.constBits(), 0.0,
        std::plus(), [](int one, int other) { return (one - other) * (one - other); });
    return std::sqrt(squares / (3.0 * read.width() * read.height()));
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

class WriterReadersTest : public WriterTest, public ::testing::WithParamInterface<Reading> {};

TEST_P(WriterReadersTest, ConfirmsWhatWasWritten) {
    const Reading& reading = GetParam();
    const QString program = QString::fromLatin1(reading.reader);
    if (!IsInstalled(program)) {
        GTEST_SKIP() << reading.reader << " is not installed";
    }
    const QString path = PathOf(u"a."_s + QString::fromLatin1(reading.extension));
    for (const int dotsPerInch : {254, 305}) {
        WriteImageFile(path, Pixels(TestPicture(37, 45), 2, 3), {dotsPerInch}, {Software});
        const ProgramResult result = RunProgram(program, reading.arguments + QStringList{path});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.errors.trimmed().toStdString(), "");
        QString lines(u'\n');
        for (const QString& line : result.output.split(u'\n')) {
            lines += line.simplified() + u" \n"_s;
        }
        for (const QString& line : Completed(reading.lines, dotsPerInch).split(u'|')) {
            EXPECT_TRUE(line.isEmpty() || lines.contains(u'\n' + line + u' '))
                << qPrintable(line + u" is not in\n"_s + lines);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, WriterReadersTest, ::testing::ValuesIn(Readings),
                         [](const auto& info) {
                             return std::string(info.param.reader) + '_' + info.param.extension +
                                    '_' + std::to_string(info.index);
                         });

TEST_F(WriterTest, ExiftoolFindsNoResolutionAndNoNameWhereThereIsNone) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    const QList<std::pair<QString, QString>> places{
        {u"jpg"_s, u"-Software"_s}, {u"jp2"_s, u"-Software"_s}, {u"tif"_s, u"-Software"_s},
        {u"png"_s, u"-Software"_s}, {u"pdf"_s, u"-Producer"_s}, {u"pdf"_s, u"-Creator"_s}};
    for (const auto& [extension, tag] : places) {
        const QString path = PathOf(u"a."_s + extension);
        for (const auto& [software, told] : {std::pair("abc", u"abc\t-\n"_s), {"", u"-\t-\n"_s}}) {
            WriteImageFile(path, Pixels(TestPicture(8, 8)), {}, {software});
            EXPECT_EQ(
                RunProgram(u"exiftool"_s, {u"-T"_s, tag, u"-IFD0:XResolution"_s, path}).output,
                told)
                << qPrintable(extension + tag);
        }
    }
}

TEST_F(WriterTest, OpenJpegDecodesNearlyThePixelsOfEverySize) {
    if (!IsInstalled(u"opj_decompress"_s)) {
        GTEST_SKIP() << "opj_decompress is not installed";
    }
    // The codec reckons badly with two pixels. The last one takes two strips, the second of which
    // is two rows high.
    for (const auto& [size, tolerance] : {std::pair(QSize(1, 1), 20),
                                          {{7, 5}, 2},
                                          {{1, 300}, 2},
                                          {{300, 1}, 2},
                                          {{401, 301}, 2},
                                          {{16000, 130}, 2}}) {
        const QImage tile = TestPicture(size.width(), size.height());
        WriteImageFile(PathOf(u"a.jp2"_s), Pixels(tile, 2, 1), {300});
        EXPECT_LE(Deviation(ReadBack(u"a.jp2"_s), Unrolled(tile, 2, 1)), tolerance)
            << size.width() << " x " << size.height();
    }
}

TEST_F(WriterTest, PdfIsThePictureAtItsPhysicalSize) {
    if (!IsInstalled(u"pdftoppm"_s)) {
        GTEST_SKIP() << "the programs of Poppler are not installed";
    }
    const QString path = PathOf(u"a.pdf"_s);
    const Pixels arranged(Arrangement{{150, 130},
                                      {TestPicture(37, 45), TestPicture(20, 9)},
                                      {{0, {3, 5}}, {0, {60, 5}}, {1, {130, 121}}},
                                      {{{40, 0, 1, 130}, qRgb(128, 128, 128)}}});
    for (const Pixels& picture : {Pixels(TestPicture(37, 45), 2, 3), arranged}) {
        for (const int dotsPerInch : {0, 96, 254, 301, 305, 2540}) {
            WriteImageFile(path, picture, {dotsPerInch});
            const int counted = dotsPerInch > 0 ? dotsPerInch : 72;
            RunProgram(u"pdftoppm"_s, {u"-png"_s, u"-singlefile"_s, u"-r"_s,
                                       QString::number(counted), path, PathOf(u"page"_s)});
            EXPECT_TRUE(SamePixels(ReadBack(u"page.png"_s), picture.ToImage())) << dotsPerInch;
        }
    }
    EXPECT_EQ(Bytes(u"a.pdf"_s).count("/Subtype /Image"), 2) << "each picture once";
    // Several batches of bands.
    const QImage tile = TestPicture(1400, 2100);
    WriteImageFile(path, Pixels(tile, 2, 2), {300}, {"a (b"});
    EXPECT_TRUE(SamePixels(ReadBack(u"a.pdf"_s), Unrolled(tile, 2, 2)));
}

}  // namespace kadrona::imaging
