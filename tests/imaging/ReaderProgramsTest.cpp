#include "ReaderFixture.h"
#include "WriterFixture.h"

using namespace Qt::StringLiterals;

/// Pictures that outside programs wrote, against what these programs make of them themselves.
namespace kadrona::imaging {

namespace {

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
    {"avif", "heif-enc -A -q 80 @in.png -o @out", "heif-convert @out @back.png"},
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
    if (!Run(QString::fromLatin1(format.encode), PathOf(name)) ||
        !Run(QString::fromLatin1(format.decode), PathOf(name))) {
        GTEST_SKIP() << "the program of " << format.extension << " is not installed";
    }
    const LoadedImage loaded = ReadImageFile(PathOf(name));
    EXPECT_LE(LargestDifference(loaded.pixels.ToImage(), QImage(PathOf(u"back.png"_s))),
              format.tolerance);

    const QByteArray whole = Bytes(name);
    for (qsizetype size = 20; size < whole.size() * 9 / 10; size += 1 + whole.size() / 30) {
        EXPECT_NE(test::Failure(whole.first(size)), QString()) << size;
    }
    ReadOptions few;
    few.maximumPixels = 150 * 101 - 1;
    EXPECT_TRUE(test::Failure(whole, few).contains(u"Megapixel"_s));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ReaderProgramsTest, ::testing::ValuesIn(Formats), [](const auto& info) {
        return QString::fromLatin1(info.param.extension).replace(u'.', u'_').toStdString();
    });

TEST_F(WriterTest, OwnJpeg2000OpensAgain) {
    // Of two strips.
    WriteImageFile(PathOf(u"a.jp2"_s), Pixels(TestPicture(9000, 600)), {305}, {"abc"});
    const LoadedImage loaded = ReadImageFile(PathOf(u"a.jp2"_s));
    EXPECT_EQ(loaded.resolution.value, 305);
    EXPECT_LE(LargestDifference(loaded.pixels.ToImage(), ReadBack(u"a.jp2"_s)), 1);
}

}  // namespace kadrona::imaging
