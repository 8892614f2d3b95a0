#include <QRegularExpression>

#include "WriterFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

struct GridCase {
    QSize tile;
    int columns;
    int rows;
    const char* why;
};

class WriterJpegTest : public WriterTest, public ::testing::WithParamInterface<GridCase> {};

TEST_P(WriterJpegTest, DecodesToWhatPlainEncodingDecodesTo) {
    if (!IsInstalled(u"cjpeg"_s)) {
        GTEST_SKIP() << "cjpeg is not installed";
    }
    const auto& [size, columns, rows, why] = GetParam();
    const QImage tile = TestPicture(size.width(), size.height());
    WriteImageFile(PathOf(u"a.jpg"_s), Pixels(tile, columns, rows), {300});
    // From top to bottom and without restart intervals.
    ASSERT_TRUE(Unrolled(tile, columns, rows).save(PathOf(u"plain.ppm"_s)));
    RunProgram(u"cjpeg"_s, {u"-quality"_s, u"95"_s, u"-sample"_s, u"1x1"_s, u"-outfile"_s,
                            PathOf(u"plain.jpg"_s), PathOf(u"plain.ppm"_s)});
    EXPECT_TRUE(testing::SamePixels(ReadBack(u"a.jpg"_s), ReadBack(u"plain.jpg"_s)));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, WriterJpegTest,
    ::testing::Values(GridCase{{1, 1}, 1, 1, "one pixel"}, GridCase{{7, 5}, 1, 1, "below a block"},
                      GridCase{{70, 64}, 1, 1, "one strip"},
                      GridCase{{70, 65}, 1, 1, "one row more than a strip"},
                      GridCase{{1, 3000}, 1, 1, "more than a batch of strips, ends in full rows"},
                      GridCase{{3, 4101}, 1, 1, "more than two batches, ends in a part of a row"},
                      GridCase{{13, 64}, 3, 4, "every strip repeats"},
                      GridCase{{24, 40}, 2, 5, "rows repeat out of step with the strips"},
                      GridCase{{10, 12}, 2, 7, "every third copy begins a row; last row in part"},
                      GridCase{{9, 29}, 2, 4, "rows would repeat only after eight copies"},
                      GridCase{{5, 3}, 1, 900, "rows repeat in every strip"}),
    [](const auto& info) {
        return QString::fromLatin1(info.param.why)
            .replace(QRegularExpression(u"[^a-z]"_s), u"_"_s)
            .toStdString();
    });

}  // namespace kadrona::imaging
