#include "imaging/reading/JpegReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "imaging/metadata/PhotoshopBlock.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/reading/JpegDecompressor.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

constexpr int ExifMarker = JPEG_APP0 + 1;
constexpr int ProfileMarker = JPEG_APP0 + 2;
constexpr int PhotoshopMarker = JPEG_APP0 + 13;

void ReadHeader(JpegDecompressor& jpeg) {
    jpeg.Run([](j_decompress_ptr info) {
        constexpr unsigned EveryByte = 0xffff;
        jpeg_save_markers(info, ExifMarker, EveryByte);
        jpeg_save_markers(info, ProfileMarker, EveryByte);
        jpeg_save_markers(info, PhotoshopMarker, EveryByte);
        jpeg_read_header(info, TRUE);
    });
}

FileMetadata ReadMetadata(const jpeg_decompress_struct& info) {
    constexpr QByteArrayView Prefix("Exif\0\0", 6);
    constexpr double CentimetresPerInch = 2.54;
    FileMetadata metadata;
    for (const auto* marker = info.marker_list; marker; marker = marker->next) {
        const QByteArrayView data(marker->data, static_cast<qsizetype>(marker->data_length));
        if (marker->marker != ExifMarker || !data.startsWith(Prefix)) {
            continue;
        }
        metadata = ReadExif(data.sliced(Prefix.size()));
        break;
    }
    // The density of JFIF has no unit in many files that tell it in the EXIF block.
    DotsPerInch density;
    if (info.saw_JFIF_marker && info.density_unit == 1) {
        density = ResolutionFrom(info.X_density);
    } else if (info.saw_JFIF_marker && info.density_unit == 2) {
        density = ResolutionFrom(info.X_density * CentimetresPerInch);
    }
    if (density.value != 0) {
        metadata.resolution = density;
    }
    return metadata;
}

IptcItems ReadIptc(const jpeg_decompress_struct& info) {
    QByteArray block;
    for (const auto* marker = info.marker_list; marker; marker = marker->next) {
        const QByteArrayView data(marker->data, static_cast<qsizetype>(marker->data_length));
        if (marker->marker == PhotoshopMarker && data.startsWith(PhotoshopSignature)) {
            block.append(data.sliced(PhotoshopSignature.size()));
        }
    }
    return DecodeIptc(IptcStream(block));
}

QByteArray ReadProfile(JpegDecompressor& jpeg) {
    JOCTET* data = nullptr;
    unsigned length = 0;
    jpeg.Run([&](j_decompress_ptr info) {
        if (!jpeg_read_icc_profile(info, &data, &length)) {
            data = nullptr;
        }
    });
    const std::unique_ptr<JOCTET, decltype(&std::free)> owner(data, &std::free);
    return {reinterpret_cast<const char*>(data), data ? qsizetype{length} : 0};
}

ColourModel ModelOf(const jpeg_decompress_struct& info) {
    switch (info.jpeg_color_space) {
        case JCS_GRAYSCALE:
            return ColourModel::Grey;
        case JCS_CMYK:
        case JCS_YCCK:
            return info.saw_Adobe_marker ? ColourModel::InvertedCmyk : ColourModel::Cmyk;
        default:
            return ColourModel::Rgb;
    }
}

/// Decodes into the 32-bit pixels of `image`, which has the size of the picture.
void DecodeRows(JpegDecompressor& jpeg, QImage& image) {
    uchar* const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    jpeg.Run([bits, stride](j_decompress_ptr info) {
        constexpr JDIMENSION RowsAtOnce = 16;
        jpeg_start_decompress(info);
        std::array<JSAMPROW, RowsAtOnce> rows = {};
        while (info->output_scanline < info->output_height) {
            const JDIMENSION count =
                std::min(RowsAtOnce, info->output_height - info->output_scanline);
            for (JDIMENSION i = 0; i < count; ++i) {
                rows[i] = bits + qsizetype{info->output_scanline + i} * stride;
            }
            jpeg_read_scanlines(info, rows.data(), count);
        }
    });
    // Whole passes may be missing then, without a trace in the ones that are there.
    if (jpeg.EndWasMissing() && jpeg_has_multiple_scans(&jpeg.Info())) {
        throw JpegFault::Incomplete;
    }
    jpeg.Finish();
}

DecodedImage DecodeJpeg(const ReadTask& task) {
    JpegDecompressor jpeg(task.Device());
    ReadHeader(jpeg);
    jpeg_decompress_struct& info = jpeg.Info();
    // A progressive file keeps all its coefficients, however small it is shown.
    const bool inRows = task.Shrink() > 1 && !jpeg_has_multiple_scans(&info);
    task.RequireAllowedSize(info.image_width, info.image_height,
                            inRows ? task.Options().maximumShrunkPixels : 0);
    DecodedImage decoded;
    decoded.metadata = ReadMetadata(info);
    decoded.metadata.iptc = ReadIptc(info);
    decoded.profile = ReadProfile(jpeg);
    decoded.model = ModelOf(info);
    // The alpha of this byte order is 255, which is what QImage::Format_RGB32 wants of it.
    info.out_color_space = info.num_components == 4 ? JCS_CMYK : JCS_EXT_BGRA;
    info.scale_num = 1;
    info.scale_denom = static_cast<unsigned>(task.Shrink());
    jpeg.Run([](j_decompress_ptr decompress) { jpeg_calc_output_dimensions(decompress); });
    decoded.image =
        NewImage({static_cast<int>(info.output_width), static_cast<int>(info.output_height)},
                 QImage::Format_RGB32);
    DecodeRows(jpeg, decoded.image);
    return decoded;
}

QString ReasonOf(JpegFault fault) {
    switch (fault) {
        case JpegFault::Incomplete:
            return IncompleteFileReason();
        case JpegFault::Unsupported:
            return u"Diese Art von JPEG-Datei wird nicht unterstützt."_s;
        case JpegFault::OutOfMemory:
            return OutOfMemoryReason();
        case JpegFault::TooMuchMemory:
            return TooMuchMemoryReason();
        case JpegFault::Damaged:
            break;
    }
    return DamagedFileReason();
}

}  // namespace

bool IsJpeg(QByteArrayView start) {
    return start.startsWith("\xff\xd8\xff");
}

DecodedImage ReadJpeg(const ReadTask& task) try {
    return DecodeJpeg(task);
} catch (JpegFault fault) {
    task.Fail(ReasonOf(fault));
}

}  // namespace kadrona::imaging
