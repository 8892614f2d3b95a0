#include "WriterFixture.h"

using namespace Qt::StringLiterals;

/// What we write, in the eyes of programs that we did not write.
namespace kadrona::imaging {

namespace {

const QList<int> Resolutions{72, 96, 254, 299, 300, 301, 305, 600, 1200, 2540};

}  // namespace

class WriterProgramsTest : public WriterTest {
 protected:
    /// Writes a grid of 2 by 3, 74 by 135 pixels in all; returns the path.
    QString Written(const QString& name, int dotsPerInch = 300) const {
        const QString path = PathOf(name);
        WriteImageFile(path, Pixels(TestPicture(37, 45), 2, 3), {dotsPerInch});
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
    for (const QString& extension : WritableExtensions()) {
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
    for (const QString& extension : WritableExtensions()) {
        for (const int dotsPerInch : Resolutions) {
            const ProgramResult result =
                RunProgram(u"identify"_s,
                           {u"-regard-warnings"_s, u"-units"_s, u"PixelsPerInch"_s, u"-format"_s,
                            u"%w %h %[fx:round(resolution.x)] %[fx:round(resolution.y)]"_s,
                            Written(u"a."_s + extension, dotsPerInch)});
            EXPECT_EQ(result.exitCode, 0);
            EXPECT_EQ(result.errors.toStdString(), "");
            EXPECT_EQ(result.output.toStdString(), u"74 135 %1 %1"_s.arg(dotsPerInch).toStdString())
                << qPrintable(extension);
        }
    }
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

TEST_F(WriterProgramsTest, TiffinfoReadsEveryField) {
    if (!IsInstalled(u"tiffinfo"_s)) {
        GTEST_SKIP() << "tiffinfo is not installed";
    }
    const ProgramResult result = RunProgram(u"tiffinfo"_s, {u"-D"_s, Written(u"a.tif"_s, 305)});
    EXPECT_EQ(result.errors.toStdString(), "");
    for (const char* line :
         {"Image Width: 74 Image Length: 135", "Resolution: 305, 305 pixels/inch", "Bits/Sample: 8",
          "Photometric Interpretation: RGB color", "Samples/Pixel: 3", "ICC Profile: <present>"}) {
        EXPECT_TRUE(result.output.contains(QString::fromLatin1(line))) << line << " is not in\n"
                                                                       << qPrintable(result.output);
    }
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

}  // namespace kadrona::imaging
