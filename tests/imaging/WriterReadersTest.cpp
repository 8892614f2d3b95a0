#include <algorithm>
#include <vector>

#include "WriterFixture.h"

using namespace Qt::StringLiterals;

/// Every format in the eyes of every outside program that reads it: size, resolution, the name of
/// the program and the colour space, each where the format has a place for it and the reader looks.
namespace kadrona::imaging {

namespace {

constexpr int Resolution = 305;
const QByteArray Software = "KDR 6 Prof by www.example";

/// What a reader has to say of a file of 74 by 135 pixels.
struct Reading {
    const char* reader;
    const char* extension;
    /// Stand before the file's path.
    QStringList arguments;
    /// Lines of its output or what they begin with, spaces counted once.
    std::vector<const char*> lines;
};

void PrintTo(const Reading& reading, std::ostream* stream) {
    *stream << reading.reader << ' ' << reading.extension;
}

const QStringList AllTags{u"-a"_s, u"-n"_s, u"-s"_s, u"-G1"_s};

QStringList Format(const char* format) {
    return {u"-units"_s, u"PixelsPerInch"_s, u"-regard-warnings"_s, u"-format"_s,
            QString::fromLatin1(format)};
}

const Reading Readings[] = {
    {"exiftool",
     "jpg",
     AllTags,
     {"[File] ImageWidth : 74", "[File] ImageHeight : 135", "[JFIF] ResolutionUnit : 1",
      "[JFIF] XResolution : 305", "[JFIF] YResolution : 305", "[IFD0] ResolutionUnit : 2",
      "[IFD0] XResolution : 305", "[IFD0] YResolution : 305",
      "[IFD0] Software : KDR 6 Prof by www.example", "[ExifIFD] ExifImageWidth : 74",
      "[ExifIFD] ExifImageHeight : 135", "[ExifIFD] ColorSpace : 1",
      "[ICC_Profile] ProfileDescription : sRGB"}},
    {"exiftool",
     "jp2",
     AllTags,
     {"[Jpeg2000] ImageWidth : 74", "[Jpeg2000] ImageHeight : 135",
      "[Jpeg2000] CaptureXResolution : 1.200787", "[Jpeg2000] CaptureXResolutionUnit : 4",
      "[Jpeg2000] CaptureYResolution : 1.200787", "[Jpeg2000] CaptureYResolutionUnit : 4",
      "[Jpeg2000] ColorSpace : 16", "[IFD0] XResolution : 305", "[IFD0] YResolution : 305",
      "[IFD0] Software : KDR 6 Prof by www.example", "[ExifIFD] ExifImageWidth : 74",
      "[ExifIFD] ExifImageHeight : 135"}},
    {"exiftool",
     "tif",
     AllTags,
     {"[IFD0] ImageWidth : 74", "[IFD0] ImageHeight : 135", "[IFD0] ResolutionUnit : 2",
      "[IFD0] XResolution : 305", "[IFD0] YResolution : 305", "[IFD0] Orientation : 1",
      "[IFD0] Software : KDR 6 Prof by www.example", "[ICC_Profile] ProfileDescription : sRGB"}},
    {"exiftool",
     "png",
     AllTags,
     {"[PNG] ImageWidth : 74", "[PNG] ImageHeight : 135", "[PNG-pHYs] PixelsPerUnitX : 12008",
      "[PNG-pHYs] PixelsPerUnitY : 12008", "[PNG-pHYs] PixelUnits : 1", "[PNG] SRGBRendering : 0",
      "[PNG] Software : KDR 6 Prof by www.example"}},
    {"exiftool",
     "bmp",
     AllTags,
     {"[File] ImageWidth : 74", "[File] ImageHeight : 135", "[File] PixelsPerMeterX : 12008",
      "[File] PixelsPerMeterY : 12008"}},
    {"exiftool",
     "pdf",
     AllTags,
     {"[PDF] PageCount : 1", "[PDF] Creator : KDR 6 Prof by www.example",
      "[PDF] Producer : KDR 6 Prof by www.example"}},
    {"identify",
     "jpg",
     Format("%m %wx%h %x %y %[exif:Software] %[profile:icc]"),
     {"JPEG 74x135 305 305 KDR 6 Prof by www.example sRGB"}},
    {"identify",
     "tif",
     Format("%m %wx%h %x %y %[tiff:software] %[profile:icc]"),
     {"TIFF 74x135 305 305 KDR 6 Prof by www.example sRGB"}},
    {"identify",
     "png",
     Format("%m %wx%h %[fx:round(resolution.x)] %[fx:round(resolution.y)] %[Software] %[png:sRGB]"),
     {"PNG 74x135 305 305 KDR 6 Prof by www.example intent=0 (Perceptual Intent)"}},
    {"identify",
     "bmp",
     Format("%m %wx%h %[fx:round(resolution.x)] %[fx:round(resolution.y)] %[colorspace]"),
     {"BMP3 74x135 305 305 sRGB"}},
    {"identify", "jp2", Format("%m %wx%h %[colorspace]"), {"JP2 74x135 sRGB"}},
    {"tiffinfo",
     "tif",
     {},
     {"Image Width: 74 Image Length: 135", "Resolution: 305, 305 pixels/inch",
      "Software: KDR 6 Prof by www.example", "ICC Profile: <present>, 459 bytes", "Bits/Sample: 8",
      "Photometric Interpretation: RGB color", "Samples/Pixel: 3"}},
    {"pdfinfo",
     "pdf",
     {},
     {"Creator: KDR 6 Prof by www.example", "Producer: KDR 6 Prof by www.example", "Pages: 1",
      "Page size: 17.4689 x 31.8689 pts"}},
    {"pdfimages", "pdf", {u"-list"_s}, {"1 0 image 74 135 icc 3 8 image no 5 0 305 305"}},
    {"opj_dump", "jp2", {u"-i"_s}, {"x1=74, y1=135", "numcomps=3"}},
};

}  // namespace

class WriterReadersTest : public WriterTest, public ::testing::WithParamInterface<Reading> {};

TEST_P(WriterReadersTest, ConfirmsWhatWasWritten) {
    const Reading& reading = GetParam();
    const QString program = QString::fromLatin1(reading.reader);
    if (!IsInstalled(program)) {
        GTEST_SKIP() << reading.reader << " is not installed";
    }
    const QString path = PathOf(u"a."_s + QString::fromLatin1(reading.extension));
    WriteImageFile(path, Pixels(TestPicture(37, 45), 2, 3), {Resolution}, {Software});
    const ProgramResult result = RunProgram(program, reading.arguments + QStringList{path});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors.trimmed().toStdString(), "");
    QStringList lines;
    for (const QString& line : result.output.split(u'\n')) {
        lines.append(line.simplified());
    }
    for (const char* line : reading.lines) {
        const QString begin = QString::fromLatin1(line) + u' ';
        const bool said = std::any_of(lines.begin(), lines.end(), [&](const QString& output) {
            return (output + u' ').startsWith(begin);
        });
        EXPECT_TRUE(said) << line << " is not in\n" << qPrintable(result.output);
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, WriterReadersTest, ::testing::ValuesIn(Readings),
                         [](const auto& info) {
                             return std::string(info.param.reader) + '_' + info.param.extension;
                         });

}  // namespace kadrona::imaging
