#include <cmath>
#include <numeric>

#include "WriterFixture.h"

using namespace Qt::StringLiterals;

/// Every format in the eyes of every outside program that reads it: size, resolution, the name of
/// the program and the colour space, each where the format has a place for it and the reader looks.
namespace kadrona::imaging {

namespace {

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
    {"pdfimages", "pdf", {u"-list"_s}, "1 0 image 74 135 icc 3 8 image no 5 0 $dpi $dpi"},
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
    for (const QString& extension : {u"jpg"_s, u"jp2"_s, u"tif"_s, u"png"_s, u"pdf"_s}) {
        const QString path = PathOf(u"a."_s + extension);
        WriteImageFile(path, Pixels(TestPicture(8, 8)), {}, {});
        const QString tags = u"-T -Software -PDF:Producer -PDF:Creator -IFD0:XResolution"_s;
        EXPECT_EQ(RunProgram(u"exiftool"_s, tags.split(u' ') + QStringList{path}).output,
                  u"-\t-\t-\t-\n"_s)
            << qPrintable(extension);
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
            EXPECT_TRUE(testing::SamePixels(ReadBack(u"page.png"_s), picture.ToImage()))
                << dotsPerInch;
        }
    }
    EXPECT_EQ(Bytes(u"a.pdf"_s).count("/Subtype /Image"), 2) << "each picture once";
    // Several batches of bands.
    const QImage tile = TestPicture(1400, 2100);
    WriteImageFile(path, Pixels(tile, 2, 2), {300}, {"a (b"});
    EXPECT_TRUE(testing::SamePixels(ReadBack(u"a.pdf"_s), Unrolled(tile, 2, 2)));
}

}  // namespace kadrona::imaging
