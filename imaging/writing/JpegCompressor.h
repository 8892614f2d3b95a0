#pragma once

// Needs what jpeglib.h declares.
#include <jerror.h>

#include <QByteArrayView>
#include <QSize>
#include <QString>
#include <cstdlib>
#include <new>

#include "imaging/codec/JpegErrors.h"
#include "imaging/writing/JpegCoding.h"
#include "imaging/writing/RowSource.h"
#include "platform/Error.h"

namespace kadrona::imaging {

/// A libjpeg compressor that writes into memory.
class JpegCompressor {
 public:
    JpegCompressor() { info_.err = &errors_; }
    ~JpegCompressor() {
        Output();
        jpeg_destroy_compress(&info_);
        std::free(buffer_);
    }
    JpegCompressor(const JpegCompressor&) = delete;
    JpegCompressor& operator=(const JpegCompressor&) = delete;

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
        throw platform::Error(QStringLiteral("Das JPEG-Verfahren meldet „%1“.")
                                  .arg(QString::fromUtf8(message.data())));
    }

    /// Prepares a picture of `size`, red first, and emits what comes before its data. `segments`
    /// are the steps that start the compression and add segments of their own.
    template <typename Segments>
    void Start(QSize size, const JpegCoding& coding, const Segments& segments) {
        Run([&](jpeg_compress_struct& info) {
            jpeg_create_compress(&info);
            jpeg_mem_dest(&info, &buffer_, &bytes_);
            info.image_width = static_cast<JDIMENSION>(size.width());
            info.image_height = static_cast<JDIMENSION>(size.height());
            info.input_components = RowSource::BytesPerPixel;
            info.in_color_space = JCS_RGB;
            jpeg_set_defaults(&info);
            jpeg_set_linear_quality(&info, coding.tablePercent, TRUE);
            const int luma = coding.chroma == ChromaSampling::Full ? 1 : 2;
            info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = luma;
            info.restart_in_rows = coding.restartEachRow ? 1 : 0;
            info.optimize_coding = coding.ownTables ? TRUE : FALSE;
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

}  // namespace kadrona::imaging
