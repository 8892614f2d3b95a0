#include "imaging/writing/JpegEncoder.h"

#include <jerror.h>

#include <QByteArrayView>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

#include "imaging/codec/JpegErrors.h"
#include "imaging/metadata/ExifBlock.h"
#include "imaging/metadata/PhotoshopBlock.h"
#include "imaging/writing/FormatWriting.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

constexpr int Quality = 95;

/// A libjpeg compressor that writes into memory.
class Compressor {
 public:
    Compressor() { info_.err = &errors_; }
    ~Compressor() {
        Output();
        jpeg_destroy_compress(&info_);
        std::free(buffer_);
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    /// Runs steps as JpegErrors::Run does; what fails throws platform::Error.
    template <typename Steps>
    void Run(const Steps& steps) {
        if (errors_.Run([&] { steps(info_); })) {
            return;
        }
        if (errors_.msg_code == JERR_OUT_OF_MEMORY) {
            throw std::bad_alloc();
        }
        const auto message = JpegErrors::Message(reinterpret_cast<j_common_ptr>(&info_));
        throw platform::Error(
            u"Das JPEG-Verfahren meldet „%1“."_s.arg(QString::fromUtf8(message.data())));
    }

    /// Prepares a picture of `size` and emits what comes before its restart intervals. `segments`
    /// are the steps that add segments of their own.
    template <typename Segments>
    void Start(QSize size, const Segments& segments) {
        Run([&](jpeg_compress_struct& info) {
            jpeg_create_compress(&info);
            jpeg_mem_dest(&info, &buffer_, &bytes_);
            info.image_width = static_cast<JDIMENSION>(size.width());
            info.image_height = static_cast<JDIMENSION>(size.height());
            info.input_components = RowSource::BytesPerPixel;
            info.in_color_space = JCS_RGB;
            jpeg_set_defaults(&info);
            jpeg_set_quality(&info, Quality, TRUE);
            for (int component = 0; component < info.num_components; ++component) {
                info.comp_info[component].h_samp_factor = 1;
                info.comp_info[component].v_samp_factor = 1;
            }
            info.restart_in_rows = 1;
            segments(info);
            // No row at all, but it makes libjpeg emit the frame and scan headers.
            jpeg_write_scanlines(&info, nullptr, 0);
        });
    }

    /// What was emitted until now; valid until more is.
    QByteArrayView Output() {
        // A buffer in memory is not ended by this, it only says where it has grown to.
        if (info_.dest) {
            info_.dest->term_destination(&info_);
        }
        return {buffer_, static_cast<qsizetype>(bytes_)};
    }

 private:
    jpeg_compress_struct info_ = {};
    JpegErrors errors_;
    unsigned char* buffer_ = nullptr;
    unsigned long bytes_ = 0;
};

void WriteSegment(jpeg_compress_struct& info, int marker, const QByteArray& content) {
    jpeg_write_marker(&info, marker, reinterpret_cast<const JOCTET*>(content.constData()),
                      static_cast<unsigned>(content.size()));
}

/// Cuts a scan at its markers; what follows the last of them is left out.
std::vector<QByteArray> SplitAtMarkers(QByteArrayView scan) {
    std::vector<QByteArray> parts;
    qsizetype begin = 0;
    qsizetype at = scan.indexOf('\xff');
    while (at >= 0 && at + 1 < scan.size()) {
        // A 0xff of the data itself has a zero behind it.
        if (scan[at + 1] != '\0') {
            parts.push_back(scan.sliced(begin, at - begin).toByteArray());
            begin = at + 2;
        }
        at = scan.indexOf('\xff', at + 2);
    }
    return parts;
}

}  // namespace

QByteArray EncodeJpegHeader(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata) {
    const QByteArray profile = SrgbProfile();
    const bool known = resolution.value > 0;
    QByteArray exif;
    if (known || !metadata.software.isEmpty()) {
        exif = QByteArray("Exif\0\0", 6) + ExifBlock(size, resolution, metadata);
    }
    const std::vector<QByteArray> iptc =
        PhotoshopSegments(WithIptcStream({}, EncodeIptc(metadata.iptc)));
    Compressor compressor;
    compressor.Start(size, [&](jpeg_compress_struct& info) {
        constexpr UINT8 AspectRatio = 0;
        constexpr UINT8 PerInch = 1;
        info.density_unit = known ? PerInch : AspectRatio;
        info.X_density = info.Y_density = static_cast<UINT16>(known ? resolution.value : 1);
        jpeg_start_compress(&info, TRUE);
        if (!exif.isEmpty()) {
            WriteSegment(info, JPEG_APP0 + 1, exif);
        }
        jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(profile.constData()),
                               static_cast<unsigned>(profile.size()));
        for (const QByteArray& segment : iptc) {
            WriteSegment(info, JPEG_APP0 + 13, segment);
        }
    });
    return compressor.Output().toByteArray();
}

std::vector<QByteArray> EncodeMcuRows(const RowSource& rows, int first, int count) {
    const int firstRow = first * McuRowHeight;
    const int height = std::min(count * McuRowHeight, rows.Height() - firstRow);
    const auto stride = static_cast<size_t>(rows.BytesPerRow());
    std::vector<uchar> pixels(stride * McuRowHeight);
    std::array<JSAMPROW, McuRowHeight> pointers{};
    for (size_t row = 0; row < pointers.size(); ++row) {
        pointers[row] = pixels.data() + row * stride;
    }

    Compressor compressor;
    compressor.Start({rows.Width(), height}, [](jpeg_compress_struct& info) {
        info.write_JFIF_header = FALSE;
        jpeg_start_compress(&info, TRUE);
    });
    const qsizetype headerBytes = compressor.Output().size();
    compressor.Run([&](jpeg_compress_struct& info) {
        for (int y = 0; y < height; y += McuRowHeight) {
            const int present = std::min(McuRowHeight, height - y);
            for (int row = 0; row < present; ++row) {
                rows.CopyRow(firstRow + y + row, pointers[static_cast<size_t>(row)]);
            }
            jpeg_write_scanlines(&info, pointers.data(), static_cast<JDIMENSION>(present));
        }
        jpeg_finish_compress(&info);
    });
    return SplitAtMarkers(compressor.Output().sliced(headerBytes));
}

}  // namespace kadrona::imaging
