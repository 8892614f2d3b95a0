#include <QRegularExpression>
#include <array>
#include <cstdio>
#include <cstdlib>

// Needs what <cstdio> declares.
#include <jpeglib.h>

#include "WriterFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

struct DecodedJpeg {
    QImage image;
    int warnings = 0;
    bool progressive = false;
    int densityUnit = -1;
    int xDensity = -1;
    int yDensity = -1;
    std::array<int, 3> samplings{};
};

/// Decodes with libjpeg itself, which ends the program where the file is no JPEG at all.
DecodedJpeg Decoded(const QByteArray& bytes) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.constData()),
                 static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRX;
    DecodedJpeg decoded;
    decoded.image = QImage(static_cast<int>(info.image_width), static_cast<int>(info.image_height),
                           QImage::Format_RGB32);
    decoded.progressive = info.progressive_mode;
    decoded.densityUnit = info.saw_JFIF_marker ? info.density_unit : -1;
    decoded.xDensity = info.X_density;
    decoded.yDensity = info.Y_density;
    for (size_t component = 0; component < decoded.samplings.size(); ++component) {
        const jpeg_component_info& sampled = info.comp_info[component];
        decoded.samplings[component] = 10 * sampled.h_samp_factor + sampled.v_samp_factor;
    }
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = decoded.image.scanLine(static_cast<int>(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    decoded.warnings = static_cast<int>(errors.num_warnings);
    jpeg_destroy_decompress(&info);
    return decoded;
}

/// Encodes at quality 95, 4:4:4, from top to bottom and without restart intervals.
QByteArray PlainlyEncoded(QImage image) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = static_cast<JDIMENSION>(image.width());
    info.image_height = static_cast<JDIMENSION>(image.height());
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&info, TRUE);
    for (int y = 0; y < image.height(); ++y) {
        JSAMPROW row = image.scanLine(y);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    const QByteArray bytes(reinterpret_cast<const char*>(buffer), static_cast<qsizetype>(size));
    jpeg_destroy_compress(&info);
    std::free(buffer);
    return bytes;
}

}  // namespace

struct GridCase {
    QSize tile;
    int columns;
    int rows;
    const char* why;
};

class WriterJpegTest : public WriterTest, public ::testing::WithParamInterface<GridCase> {};

TEST_P(WriterJpegTest, DecodesToWhatPlainEncodingDecodesTo) {
    const auto& [size, columns, rows, why] = GetParam();
    const QImage tile = TestPicture(size.width(), size.height());
    WriteImageFile(PathOf(u"a.jpg"_s), Pixels(tile, columns, rows), {300});

    const DecodedJpeg decoded = Decoded(Bytes(u"a.jpg"_s));
    EXPECT_EQ(decoded.warnings, 0);
    EXPECT_FALSE(decoded.progressive);
    EXPECT_EQ(decoded.samplings, (std::array{11, 11, 11}));
    EXPECT_TRUE(testing::SamePixels(decoded.image,
                                    Decoded(PlainlyEncoded(Unrolled(tile, columns, rows))).image));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, WriterJpegTest,
    ::testing::Values(GridCase{{1, 1}, 1, 1, "one pixel"}, GridCase{{7, 5}, 1, 1, "below a block"},
                      GridCase{{8, 8}, 1, 1, "one block"}, GridCase{{70, 64}, 1, 1, "one strip"},
                      GridCase{{70, 65}, 1, 1, "one row more than a strip"},
                      GridCase{{1, 3000}, 1, 1, "more than a batch of strips, ends in full rows"},
                      GridCase{{3, 4101}, 1, 1, "more than two batches, ends in a part of a row"},
                      GridCase{{13, 64}, 3, 4, "every strip repeats"},
                      GridCase{{24, 40}, 2, 5, "rows repeat out of step with the strips"},
                      GridCase{{10, 12}, 2, 7, "every third copy begins a row; last row in part"},
                      GridCase{{9, 29}, 2, 4, "rows would repeat only after eight copies"},
                      GridCase{{9, 4}, 2, 1, "a single row in part"},
                      GridCase{{5, 3}, 1, 900, "rows repeat in every strip"}),
    [](const auto& info) {
        return QString::fromLatin1(info.param.why)
            .replace(QRegularExpression(u"[^a-z]"_s), u"_"_s)
            .toStdString();
    });

TEST_F(WriterTest, JpegDensityIsTheIntegerGiven) {
    for (const int dotsPerInch : {1, 72, 96, 254, 299, 300, 301, 305, 600, 1200, 2540, 65535}) {
        WriteImageFile(PathOf(u"a.jpg"_s), Pixels(TestPicture(8, 8)), {dotsPerInch});
        const DecodedJpeg decoded = Decoded(Bytes(u"a.jpg"_s));
        EXPECT_EQ(decoded.densityUnit, 1);
        EXPECT_EQ(decoded.xDensity, dotsPerInch);
        EXPECT_EQ(decoded.yDensity, dotsPerInch);
    }
}

TEST_F(WriterTest, JpegOfUnknownResolutionSaysNothingOfIt) {
    WriteImageFile(PathOf(u"a.jpg"_s), Pixels(TestPicture(8, 8)), {});
    const QByteArray bytes = Bytes(u"a.jpg"_s);
    const DecodedJpeg decoded = Decoded(bytes);
    EXPECT_EQ(decoded.densityUnit, 0);
    EXPECT_EQ(decoded.xDensity, 1);
    EXPECT_EQ(decoded.yDensity, 1);
    EXPECT_FALSE(bytes.contains("Exif"));
}

}  // namespace kadrona::imaging
