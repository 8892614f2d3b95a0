#include "tests/imaging/ReaderFixture.h"

// jpeglib.h does not include what it needs.
// clang-format off
#include <cstdio>
#include <jpeglib.h>
// clang-format on
#include <zlib.h>

#include <algorithm>
#include <cstdlib>

#include "platform/AtomicFile.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

LoadedImage Read(QByteArray bytes, const ReadOptions& options) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return ReadImage(buffer, u"probe"_s, options);
}

QString Failure(const QByteArray& bytes, const ReadOptions& options) {
    return testing::TextOf<ReadError>([&] { Read(bytes, options); });
}

QString Complaint(const char* reason) {
    return u"Die Datei „probe“ konnte nicht gelesen werden: "_s + QString::fromUtf8(reason);
}

QString TooMuch() {
    return Complaint("Das Bild braucht in diesem Format zu viel Arbeitsspeicher.");
}

std::string Colour(const LoadedImage& loaded, int x, int y) {
    return loaded.pixels.Tile().pixelColor(x, y).name().toStdString();
}

void ExpectColours(const LoadedImage& loaded, std::initializer_list<PixelColour> expected) {
    for (const auto& [x, y, colour] : expected) {
        EXPECT_EQ(Colour(loaded, x, y), colour) << x << ", " << y;
    }
}

void ExpectColour(const LoadedImage& loaded, QPoint position, QColor expected, int tolerance) {
    const QImage pixel = loaded.pixels.Tile().copy(QRect(position, QSize(1, 1)));
    EXPECT_LE(testing::LargestDifference(pixel, Filled({1, 1}, expected.rgb())), tolerance)
        << Colour(loaded, position.x(), position.y()) << " instead of "
        << expected.name().toStdString();
}

QByteArray Written(const QImage& image, const char* format) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(100);
    EXPECT_TRUE(writer.write(image)) << format;
    return buffer.data();
}

QByteArray Gif(std::initializer_list<int> frames) {
    QByteArray gif = "GIF89a" + QByteArray("\1\0\1\0\x80\0\0\0\0\0\xff\0\0", 13);
    for (const int colour : frames) {
        gif += QByteArray("\x2c\0\0\0\0\1\0\1\0\0\2\2", 12) + (colour ? '\x4c' : '\x44') +
               QByteArray("\1\0", 2);
    }
    return gif + ';';
}

namespace {

void SetUp(jpeg_compress_struct& info, const JpegContent& content) {
    info.image_width = static_cast<JDIMENSION>(content.size.width());
    info.image_height = static_cast<JDIMENSION>(content.size.height());
    info.input_components = content.channels;
    info.in_color_space = content.channels == 1   ? JCS_GRAYSCALE
                          : content.channels == 3 ? JCS_RGB
                                                  : JCS_CMYK;
    jpeg_set_defaults(&info);
    if (content.ycck) {
        jpeg_set_colorspace(&info, JCS_YCCK);
    }
    info.write_Adobe_marker = content.channels == 4 && content.adobeMarker;
    jpeg_set_quality(&info, 100, TRUE);
    for (int i = 0; i < info.num_components; ++i) {
        info.comp_info[i].h_samp_factor = 1;
        info.comp_info[i].v_samp_factor = 1;
    }
    info.density_unit = static_cast<UINT8>(content.densityUnit);
    info.X_density = info.Y_density = static_cast<UINT16>(content.density);
    if (content.progressive) {
        jpeg_simple_progression(&info);
    }
}

}  // namespace

QByteArray Jpeg(const JpegContent& content) {
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    SetUp(info, content);
    jpeg_start_compress(&info, TRUE);
    const auto written = [&](int marker, const QByteArray& block) {
        jpeg_write_marker(&info, marker, reinterpret_cast<const JOCTET*>(block.data()),
                          static_cast<unsigned>(block.size()));
    };
    if (!content.exif.isEmpty()) {
        written(JPEG_APP0 + 1, QByteArray("Exif\0\0", 6) + content.exif);
    }
    if (!content.profile.isEmpty()) {
        written(JPEG_APP0 + 2, QByteArray("ICC_PROFILE\0\1\1", 14) + content.profile);
    }
    QByteArray row(qsizetype{content.channels} * content.size.width(), '\0');
    auto* samples = reinterpret_cast<JSAMPLE*>(row.data());
    for (int y = 0; y < content.size.height(); ++y) {
        for (int x = 0; x < content.size.width(); ++x) {
            content.pixel(x, y, samples + qsizetype{x} * content.channels);
        }
        jpeg_write_scanlines(&info, &samples, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    std::free(data);
    return bytes;
}

TiffEntry Short(quint16 tag, quint16 value) {
    return {tag, 3, LittleEndian(value)};
}

TiffEntry Rational(quint16 tag, quint32 numerator, quint32 denominator) {
    return {tag, 5, LittleEndian(numerator) + LittleEndian(denominator)};
}

QByteArray Tiff(QList<TiffEntry> entries, const QByteArray& pixels) {
    constexpr quint16 StripOffsets = 0x111;
    constexpr quint16 StripByteCounts = 0x117;
    constexpr quint32 PixelsOffset = 8;
    if (!pixels.isEmpty()) {
        entries << TiffEntry{StripOffsets, 4, LittleEndian(PixelsOffset)}
                << TiffEntry{StripByteCounts, 4, LittleEndian(quint32(pixels.size()))};
    }
    std::sort(entries.begin(), entries.end(),
              [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
    const quint32 directory = PixelsOffset + quint32(pixels.size() + pixels.size() % 2);
    QByteArray file = QByteArray("II*\0", 4) + LittleEndian(directory) + pixels +
                      QByteArray(pixels.size() % 2, '\0') + LittleEndian(quint16(entries.size()));
    quint32 valueOffset = directory + 2 + 12 * quint32(entries.size()) + 4;
    QByteArray values;
    for (const TiffEntry& entry : entries) {
        const int unit = entry.type == 3                       ? 2
                         : entry.type == 4                     ? 4
                         : entry.type == 5 || entry.type == 10 ? 8
                                                               : 1;
        file += LittleEndian(entry.tag) + LittleEndian(entry.type) +
                LittleEndian(quint32(entry.value.size() / unit));
        if (entry.value.size() <= 4) {
            file += entry.value.leftJustified(4, '\0');
        } else {
            file += LittleEndian(valueOffset + quint32(values.size()));
            values += entry.value + QByteArray(entry.value.size() % 2, '\0');
        }
    }
    return file + QByteArray(4, '\0') + values;
}

QByteArray Box(const char* type, const QByteArray& content) {
    return BigEndian(quint32(content.size() + 8)) + type + content;
}

QByteArray WithChunk(const QByteArray& png, const char* type, const QByteArray& content) {
    constexpr qsizetype BehindHeader = 33;
    const QByteArray typed = type + content;
    const auto checksum =
        crc32(0, reinterpret_cast<const Bytef*>(typed.data()), static_cast<uInt>(typed.size()));
    QByteArray changed = png;
    return changed.insert(
        BehindHeader, BigEndian(quint32(content.size())) + typed + BigEndian(quint32(checksum)));
}

QByteArray WithProfile(const QByteArray& png, const QByteArray& profile) {
    constexpr qsizetype LengthOfQt = 4;  // before the stream of zlib
    return WithChunk(png, "iCCP", QByteArray("probe\0\0", 7) + qCompress(profile).mid(LengthOfQt));
}

QByteArray Profile(const char* name) {
    return platform::ReadWholeFile(
        QStringLiteral(KADRONA_TEST_PROFILES) + QString::fromLatin1(name), 10'000);
}

}  // namespace kadrona::imaging::test
