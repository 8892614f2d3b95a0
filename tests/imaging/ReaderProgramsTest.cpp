// Pictures that outside programs wrote.

#include "ReaderFixture.h"
#include "WriterFixture.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

namespace {

// Against what these programs make of them themselves.
struct Format {
    const char* extension;
    /// Writes @in.png to @out.
    const char* encode;
    /// Writes @out to @back.png.
    const char* decode;
    int tolerance = 3;
};

const Format Formats[] = {
    {"heic", "heif-enc -q 80 @in.png -o @out", "heif-convert @out @back.png"},
    {"ten.heic", "heif-enc -b 10 -q 90 @deep.png -o @out", "heif-convert @out @back.png"},
    {"video.heic",
     "heif-enc -q 90 --full_range_flag=0 --matrix_coefficients=1 --colour_primaries=1 @in.png -o "
     "@out",
     "heif-convert @out @back.png"},
    {"avif", "heif-enc -A -q 80 @in.png -o @out", "heif-convert @out @back.png"},
    {"ten.avif", "avifenc -s 8 -d 10 @deep.png @out", "avifdec -d 8 @out @back.png"},
    // Put together from four pictures.
    {"grid.avif", "avifenc -s 8 --grid 2x2 @tiles.png @out", "avifdec @out @back.png"},
    {"jxl", "cjxl @in.png @out -q 85 --quiet", "djxl @out @back.png --quiet"},
    {"lossless.jxl", "cjxl @in.png @out -d 0 --quiet", "djxl @out @back.png --quiet", 0},
    {"deep.jxl", "cjxl @deep.png @out -d 0 --quiet", "djxl @out @back.png --quiet", 1},
    {"boxes.jxl", "cjxl @in.jpg @out --quiet", "djxl @out @back.png --quiet"},
    {"lossy.webp", "cwebp -quiet -q 80 @in.png -o @out", "dwebp -quiet @out -o @back.png"},
    {"webp", "cwebp -quiet -lossless @in.png -o @out", "dwebp -quiet @out -o @back.png", 0},
    {"jp2", "opj_compress -r 8 -i @in.png -o @out", "opj_decompress -quiet -i @out -o @back.png",
     1},
    {"tiles.jp2", "opj_compress -t 50,40 -i @in.png -o @out",
     "opj_decompress -quiet -i @out -o @back.png", 0},
    {"j2k", "opj_compress -I -i @in.png -o @out", "opj_decompress -quiet -i @out -o @back.png", 1},
};

void PrintTo(const Format& format, std::ostream* stream) {
    *stream << format.extension;
}

}  // namespace

class ReaderProgramsTest : public WriterTest, public ::testing::WithParamInterface<Format> {
 protected:
    bool Run(QString command, const QString& file) const {
        command.replace(u"@out"_s, file).replace(u'@', PathOf(u"."_s).chopped(1));
        const QStringList words = command.split(u' ');
        return IsInstalled(words[0]) && RunProgram(words[0], words.mid(1)).exitCode == 0;
    }
};

TEST_P(ReaderProgramsTest, OpensWhatTheyWrote) {
    const Format& format = GetParam();
    const QString name = u"a."_s + QString::fromLatin1(format.extension);
    ASSERT_TRUE(TestPicture(150, 101).save(PathOf(u"in.png"_s)));
    ASSERT_TRUE(TestPicture(150, 101).save(PathOf(u"in.jpg"_s)));
    ASSERT_TRUE(TestPicture(256, 192).save(PathOf(u"tiles.png"_s)));
    ASSERT_TRUE(
        TestPicture(150, 101).convertToFormat(QImage::Format_RGBX64).save(PathOf(u"deep.png"_s)));
    if (!Run(QString::fromLatin1(format.encode), PathOf(name)) ||
        !Run(QString::fromLatin1(format.decode), PathOf(name))) {
        GTEST_SKIP() << "the program of " << format.extension << " is not installed";
    }
    const LoadedImage loaded = ReadImageFile(PathOf(name));
    EXPECT_LE(LargestDifference(loaded.pixels.ToImage(), QImage(PathOf(u"back.png"_s))),
              format.tolerance);

    const QByteArray whole = Bytes(name);
    for (qsizetype size = 20; size < whole.size() * 9 / 10; size += 1 + whole.size() / 30) {
        EXPECT_NE(Failure(whole.first(size)), QString()) << size;
    }
    ReadOptions few;
    few.maximumPixels = qint64{loaded.pixels.Width()} * loaded.pixels.Height() - 1;
    EXPECT_TRUE(Failure(whole, few).contains(u"Megapixel"_s));
}

// libheif's encoder makes a picture of odd height a grid of one: here it stands there twice.
QByteArray WithTwoTiles(QByteArray heic, QSize size) {
    const auto grow = [&heic](const char* box) {
        const qsizetype place = heic.indexOf(box) - 4;
        const auto length = qFromBigEndian<quint32>(heic.constData() + place);
        heic.replace(place, 4, BigEndian(length + 2));
    };
    const auto data = quint32(heic.indexOf("mdat")) + 4;
    heic.replace(heic.indexOf(BigEndian(data), heic.indexOf("iloc")), 4, BigEndian(data + 2));
    for (const char* box : {"meta", "iref", "dimg"}) {
        grow(box);
    }
    const qsizetype tiles = heic.indexOf("dimg") + 6;  // behind the number of the whole
    heic.replace(tiles, 4, BigEndian(quint16{2}) + BigEndian(quint16{1}) + BigEndian(quint16{1}));
    const qsizetype grid = heic.indexOf("idat") + 4;
    heic.replace(grid + 3, 3, '\1' + BigEndian(quint16(2 * size.width())));
    const QByteArray whole = BigEndian(quint32(size.width())) + BigEndian(quint32(size.height()));
    return heic.replace(heic.indexOf(whole, heic.indexOf("ipco")), 4,
                        BigEndian(quint32(2 * size.width())));
}

TEST_F(ReaderProgramsTest, HeicIsPutTogetherAndTurnedAsItsBoxesSay) {
    const QSize size(150, 101);
    ASSERT_TRUE(TestPicture(150, 101).save(PathOf(u"in.png"_s)));
    if (!Run(u"heif-enc -q 90 @in.png -o @out"_s, PathOf(u"a.heic"_s))) {
        GTEST_SKIP() << "heif-enc is not installed";
    }
    const QByteArray plain = Bytes(u"a.heic"_s);
    const QImage picture = Read(plain).pixels.ToImage();
    const std::pair<QByteArray, QTransform> turns[] = {
        {QByteArray("irot\0", 5), QTransform()},
        {"irot\1", QTransform().rotate(-90)},
        {"irot\2", QTransform().rotate(180)},
        {"irot\3", QTransform().rotate(90)},
        {QByteArray("imir\0", 5), QTransform().scale(1, -1)},
        {"imir\1", QTransform().scale(-1, 1)}};
    for (const auto& [box, turn] : turns) {
        // "pixi" is as long and says nothing that is needed.
        const QByteArray turned =
            QByteArray(plain).replace(plain.indexOf("pixi"), 12, box.leftJustified(12, '\0'));
        EXPECT_LE(LargestDifference(Read(turned).pixels.ToImage(), picture.transformed(turn)), 3)
            << box.toStdString();
    }
    const qsizetype primary = plain.indexOf("pitm") + 8;
    EXPECT_EQ(Failure(QByteArray(plain).replace(primary, 2, BigEndian(quint16{9}))),
              Complaint("Die Datei enthält kein Bild."));
    const QByteArray stored = BigEndian(quint32(size.width())) + BigEndian(quint32(size.height()));
    const auto said = [&](quint32 side) {
        return Failure(
            QByteArray(plain).replace(plain.indexOf(stored), 8, BigEndian(side).repeated(2)));
    };
    EXPECT_TRUE(said(60'000).contains(u"zu viel Arbeitsspeicher"_s));
    EXPECT_EQ(said(10), Complaint("Die Datei ist beschädigt."));
    QByteArray shortLengths = plain;  // of a byte, which the library reads as four all the same
    shortLengths[shortLengths.indexOf("hvcC") + 4 + 21] &= '\xfc';
    EXPECT_EQ(Failure(shortLengths), Complaint("Die Datei ist beschädigt oder unvollständig."));
    const QImage two = Read(WithTwoTiles(plain, size)).pixels.ToImage();
    ASSERT_EQ(two.size(), QSize(300, 101));
    EXPECT_EQ(LargestDifference(two.copy(0, 0, 150, 101), picture), 0);
    EXPECT_EQ(LargestDifference(two.copy(150, 0, 150, 101), picture), 0);
}

// A wide space is told by numbers or by a profile.
TEST_F(ReaderProgramsTest, WideSpacesAreBroughtToSrgb) {
    ASSERT_TRUE(Filled({120, 80}, qRgb(246, 202, 157)).save(PathOf(u"in.png"_s)));
    for (const QString& command :
         {u"avifenc -s 8 --cicp 12/13/6 @in.png @out"_s,
          QStringLiteral("avifenc -s 8 --icc " KADRONA_TEST_PROFILES "p3.icc @in.png @out"),
          QStringLiteral("cjxl @in.png @out -d 0 --quiet -x icc_pathname=" KADRONA_TEST_PROFILES
                         "p3.icc")}) {
        const QString file = PathOf(command.startsWith(u'c') ? u"a.jxl"_s : u"a.avif"_s);
        if (!Run(command, file)) {
            GTEST_SKIP() << qPrintable(command);
        }
        SCOPED_TRACE(qPrintable(command));
        ExpectColour(ReadImageFile(file), {60, 40}, QColor(255, 200, 150), 3);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ReaderProgramsTest, ::testing::ValuesIn(Formats), [](const auto& info) {
        return QString::fromLatin1(info.param.extension).replace(u'.', u'_').toStdString();
    });

TEST_F(WriterTest, MovingPicturesGiveTheirFirst) {
    for (const auto& [name, colour] : {std::pair{u"a.png"_s, Qt::red}, {u"b.png"_s, Qt::blue}}) {
        ASSERT_TRUE(Filled({30, 20}, QColor(colour).rgb()).save(PathOf(name)));
    }
    if (!IsInstalled(u"img2webp"_s)) {
        GTEST_SKIP() << "img2webp is not installed";
    }
    RunProgram(u"img2webp"_s, {u"-lossless"_s, PathOf(u"a.png"_s), PathOf(u"b.png"_s), u"-o"_s,
                               PathOf(u"moving.webp"_s)});
    EXPECT_EQ(Colour(ReadImageFile(PathOf(u"moving.webp"_s)), 9, 9), "#ff0000");
    RunProgram(u"convert"_s, {u"-delay"_s, u"10"_s, PathOf(u"a.png"_s), PathOf(u"b.png"_s),
                              PathOf(u"moving.gif"_s)});
    RunProgram(u"cjxl"_s, {PathOf(u"moving.gif"_s), PathOf(u"a.jxl"_s), u"-d"_s, u"0"_s});
    EXPECT_EQ(Colour(ReadImageFile(PathOf(u"a.jxl"_s)), 9, 9), "#ff0000");
}

TEST_F(WriterTest, OwnJpeg2000OpensAgain) {
    // Of two strips.
    WriteImageFile(PathOf(u"a.jp2"_s), Pixels(TestPicture(9000, 600)), {305}, {"abc"});
    const LoadedImage loaded = ReadImageFile(PathOf(u"a.jp2"_s));
    EXPECT_EQ(loaded.resolution.value, 305);
    EXPECT_LE(LargestDifference(loaded.pixels.ToImage(), ReadBack(u"a.jp2"_s)), 1);

    QByteArray inks = platform::ReadWholeFile(PathOf(u"a.jp2"_s), 10'000'000);
    const QByteArray colours("colr\1\0\0\0\0\0", 10);
    inks.replace(colours + '\x10', colours + '\x0c');  // sRGB, CMYK
    EXPECT_EQ(Failure(inks), Complaint("Diese Art von JPEG-2000-Datei wird nicht unterstützt."));
}

}  // namespace kadrona::imaging::test
