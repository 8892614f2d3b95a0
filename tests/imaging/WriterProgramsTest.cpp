#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "WriterFixture.h"

using namespace Qt::StringLiterals;

/// What we write, in the eyes of programs that we did not write.
namespace kadrona::imaging {

namespace {

const QList<int> Resolutions{72, 96, 254, 299, 300, 301, 305, 600, 1200, 2540};

/// In decibels, over all three channels.
double SignalToNoise(const QImage& image, const QImage& original) {
    double squares = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb a = image.pixel(x, y);
            const QRgb b = original.pixel(x, y);
            squares += std::pow(qRed(a) - qRed(b), 2) + std::pow(qGreen(a) - qGreen(b), 2) +
                       std::pow(qBlue(a) - qBlue(b), 2);
        }
    }
    const double samples = 3.0 * image.width() * image.height();
    return 10 * std::log10(255.0 * 255.0 * samples / std::max(squares, 1.0));
}

}  // namespace

class WriterProgramsTest : public WriterTest {
 protected:
    /// Writes a grid of 2 by 3, 74 by 135 pixels in all; returns the path.
    QString Written(const QString& name, int dotsPerInch = 300,
                    const QByteArray& software = {}) const {
        QString path = PathOf(name);
        WriteImageFile(path, Pixels(TestPicture(37, 45), 2, 3), {dotsPerInch}, {software});
        return path;
    }
};

TEST_F(WriterProgramsTest, ExiftoolReadsTheSameResolutionFromEveryBlock) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    QStringList arguments{u"-n"_s, u"-T"_s};
    for (const char* tag : {"JFIF:XResolution", "JFIF:YResolution", "JFIF:ResolutionUnit",
                            "IFD0:XResolution", "IFD0:YResolution", "IFD0:ResolutionUnit"}) {
        arguments.append(u'-' + QString::fromLatin1(tag));
    }
    QString expected;
    for (const int dotsPerInch : Resolutions) {
        arguments.append(Written(u"%1.jpg"_s.arg(dotsPerInch), dotsPerInch));
        arguments.append(Written(u"%1.tif"_s.arg(dotsPerInch), dotsPerInch));
        expected += u"%1\t%1\t1\t%1\t%1\t2\n-\t-\t-\t%1\t%1\t2\n"_s.arg(dotsPerInch);
    }
    EXPECT_EQ(RunProgram(u"exiftool"_s, arguments).output.toStdString(), expected.toStdString());
}

TEST_F(WriterProgramsTest, ExiftoolFindsNoFault) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    // It takes the deflate of TIFF, younger than the standard of 1992, for a fault.
    for (const QString& extension : {u"jpg"_s, u"jp2"_s, u"png"_s, u"bmp"_s, u"pdf"_s}) {
        const ProgramResult result =
            RunProgram(u"exiftool"_s, {u"-s3"_s, u"-validate"_s, u"-a"_s, u"-warning"_s,
                                       u"-error"_s, Written(u"a."_s + extension)});
        EXPECT_EQ(result.output.toStdString(), "OK\n") << qPrintable(extension);
    }
}

TEST_F(WriterProgramsTest, IdentifyReadsSizeAndResolutionWithoutWarning) {
    if (!IsInstalled(u"identify"_s)) {
        GTEST_SKIP() << "identify is not installed";
    }
    QStringList arguments{u"-regard-warnings"_s, u"-units"_s, u"PixelsPerInch"_s, u"-format"_s,
                          u"%f %wx%h %[fx:round(resolution.x)] %[fx:round(resolution.y)]\\n"_s};
    QString expected;
    for (const QString& extension : RasterExtensions) {
        for (const int dotsPerInch : Resolutions) {
            const QString name = u"%1.%2"_s.arg(dotsPerInch).arg(extension);
            arguments.append(Written(name, dotsPerInch));
            expected += u"%1 74x135 %2 %2\n"_s.arg(name).arg(dotsPerInch);
        }
    }
    const ProgramResult result = RunProgram(u"identify"_s, arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors.toStdString(), "");
    EXPECT_EQ(result.output.toStdString(), expected.toStdString());

    // It knows no resolution of this format.
    const ProgramResult other = RunProgram(
        u"identify"_s, {u"-regard-warnings"_s, u"-format"_s, u"%m %wx%h"_s, Written(u"a.jp2"_s)});
    EXPECT_EQ(other.errors.toStdString(), "");
    EXPECT_EQ(other.output.toStdString(), "JP2 74x135");
}

TEST_F(WriterProgramsTest, DjpegDecodesWithoutWarning) {
    if (!IsInstalled(u"djpeg"_s)) {
        GTEST_SKIP() << "djpeg is not installed";
    }
    const ProgramResult result = RunProgram(
        u"djpeg"_s, {u"-strict"_s, u"-outfile"_s, PathOf(u"a.ppm"_s), Written(u"a.jpg"_s)});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors.toStdString(), "");
    EXPECT_TRUE(testing::SamePixels(ReadBack(u"a.ppm"_s), ReadBack(u"a.jpg"_s)));
}

TEST_F(WriterProgramsTest, PngcheckFindsNoFault) {
    if (!IsInstalled(u"pngcheck"_s)) {
        GTEST_SKIP() << "pngcheck is not installed";
    }
    const ProgramResult result = RunProgram(u"pngcheck"_s, {u"-v"_s, Written(u"a.png"_s)});
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.output);
    EXPECT_TRUE(result.output.contains(u"chunk sRGB"_s)) << qPrintable(result.output);
    EXPECT_TRUE(result.output.contains(u"11811x11811 pixels/meter"_s)) << qPrintable(result.output);
}

TEST_F(WriterProgramsTest, ExiftoolReadsTheNameOfTheProgram) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    const QList<std::pair<const char*, const char*>> places{
        {"jpg", "IFD0:Software"}, {"jp2", "IFD0:Software"}, {"tif", "IFD0:Software"},
        {"png", "PNG:Software"},  {"pdf", "PDF:Producer"},  {"pdf", "PDF:Creator"}};
    for (const auto& [extension, tag] : places) {
        const QString argument = u'-' + QString::fromLatin1(tag);
        for (const char* software : {"abc", "KDR (6) \\ Prof) by www", ""}) {
            // An unknown resolution stays unknown.
            const QString path = Written(u"a."_s + QString::fromLatin1(extension), 0, software);
            const ProgramResult result =
                RunProgram(u"exiftool"_s, {u"-T"_s, argument, u"-IFD0:XResolution"_s, path});
            const QByteArray expected = *software ? software : "-";
            EXPECT_EQ(result.output.toStdString(), (expected + "\t-\n").toStdString())
                << extension << ' ' << tag;
        }
    }
}

TEST_F(WriterProgramsTest, ExiftoolReadsTheResolutionOfJpeg2000) {
    if (!IsInstalled(u"exiftool"_s)) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    for (const int dotsPerInch : Resolutions + QList<int>{1, 65535}) {
        const ProgramResult result =
            RunProgram(u"exiftool"_s,
                       {u"-n"_s, u"-T"_s, u"-CaptureXResolution"_s, u"-CaptureXResolutionUnit"_s,
                        u"-CaptureYResolution"_s, u"-CaptureYResolutionUnit"_s,
                        u"-IFD0:XResolution"_s, Written(u"a.jp2"_s, dotsPerInch)});
        const QStringList values = result.output.trimmed().split(u'\t');
        ASSERT_EQ(values.size(), 5) << qPrintable(result.output);
        for (const int i : {0, 2}) {
            const double dotsPerMetre =
                values[i].toDouble() * std::pow(10, values[i + 1].toDouble());
            EXPECT_NEAR(dotsPerMetre * 0.0254, dotsPerInch, 1e-6 * dotsPerInch);
        }
        EXPECT_EQ(values[4].toInt(), dotsPerInch);
    }
}

TEST_F(WriterProgramsTest, OpenJpegDecodesNearlyThePixelsOfEverySize) {
    if (!IsInstalled(u"opj_decompress"_s)) {
        GTEST_SKIP() << "opj_decompress is not installed";
    }
    // The codec reckons badly with two pixels. The last one takes two strips, the second of which
    // is two rows high.
    const QList<std::pair<QSize, int>> cases{{{1, 1}, 20},   {{7, 5}, 42},     {{1, 300}, 42},
                                             {{300, 1}, 42}, {{401, 301}, 42}, {{16000, 130}, 42}};
    for (const auto& [size, decibels] : cases) {
        SCOPED_TRACE(qPrintable(u"%1 x %2"_s.arg(size.width()).arg(size.height())));
        const QImage tile = TestPicture(size.width(), size.height());
        WriteImageFile(PathOf(u"a.jp2"_s), Pixels(tile, 2, 1), {300});
        const QImage read = ReadBack(u"a.jp2"_s).convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(read.size(), QSize(2 * size.width(), size.height()));
        EXPECT_GT(SignalToNoise(read, Unrolled(tile, 2, 1)), decibels);
    }
}

TEST_F(WriterProgramsTest, PdfIsThePictureAtItsPhysicalSize) {
    if (!IsInstalled(u"pdftoppm"_s) || !IsInstalled(u"pdfinfo"_s)) {
        GTEST_SKIP() << "the programs of Poppler are not installed";
    }
    const QImage picture = Unrolled(TestPicture(37, 45), 2, 3);
    for (const int dotsPerInch : Resolutions + QList<int>{0}) {
        const QString path = Written(u"a.pdf"_s, dotsPerInch);
        const int counted = dotsPerInch > 0 ? dotsPerInch : 72;
        RunProgram(u"pdftoppm"_s, {u"-png"_s, u"-singlefile"_s, u"-r"_s, QString::number(counted),
                                   path, PathOf(u"page"_s)});
        EXPECT_TRUE(testing::SamePixels(ReadBack(u"page.png"_s), picture)) << dotsPerInch;

        const QString about = RunProgram(u"pdfinfo"_s, {u"-box"_s, path}).output;
        const auto match =
            QRegularExpression(u"Page size: +([0-9.]+) x ([0-9.]+) pts"_s).match(about);
        EXPECT_NEAR(match.captured(1).toDouble(), 74 * 72.0 / counted, 0.001) << dotsPerInch;
        EXPECT_NEAR(match.captured(2).toDouble(), 135 * 72.0 / counted, 0.001) << dotsPerInch;
    }
}

TEST_F(WriterProgramsTest, PdfOfSeveralBatchesOfBandsIsWhole) {
    if (!IsInstalled(u"pdfimages"_s) || !IsInstalled(u"qpdf"_s)) {
        GTEST_SKIP() << "pdfimages or qpdf is not installed";
    }
    const QImage tile = TestPicture(1400, 2100);
    WriteImageFile(PathOf(u"a.pdf"_s), Pixels(tile, 2, 2), {300}, {"a (b"});
    EXPECT_TRUE(testing::SamePixels(ReadBack(u"a.pdf"_s), Unrolled(tile, 2, 2)));

    const ProgramResult result = RunProgram(u"qpdf"_s, {u"--check"_s, PathOf(u"a.pdf"_s)});
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.output);
    EXPECT_EQ(result.errors.toStdString(), "");
}

}  // namespace kadrona::imaging
