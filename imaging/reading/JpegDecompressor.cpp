#include "imaging/reading/JpegDecompressor.h"

#include <jerror.h>

#include <utility>

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

JpegDecompressor::JpegDecompressor(QIODevice& device) {
    info_.err = &errors_;
    errors_.error_exit = &HandleError;
    errors_.emit_message = &HandleMessage;
    Run([](j_decompress_ptr info) { jpeg_create_decompress(info); });
    // A progressive file keeps all its coefficients.
    info_.mem->max_memory_to_use = static_cast<long>(MostBytesBeside);
    errors_.allocate = std::exchange(info_.mem->alloc_large, &AllocateMarker);
    progress_.progress_monitor = &LimitScans;
    info_.progress = &progress_;
    AttachSource(device);
}

JpegDecompressor::~JpegDecompressor() {
    jpeg_destroy_decompress(&info_);
}

void JpegDecompressor::Finish() {
    errors_.pixelsAreRead = true;
    Run([](j_decompress_ptr info) { jpeg_finish_decompress(info); });
}

void JpegDecompressor::AttachSource(QIODevice& device) {
    source_.device = &device;
    source_.init_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = &FillBuffer;
    source_.skip_input_data = &SkipBytes;
    source_.resync_to_restart = &jpeg_resync_to_restart;
    source_.term_source = [](j_decompress_ptr) {};
    info_.src = &source_;
}

void JpegDecompressor::Exit(j_common_ptr info, JpegFault fault) {
    static_cast<ErrorManager*>(info->err)->fault = fault;
    JpegErrors::Leave(info);
}

void JpegDecompressor::HandleError(j_common_ptr info) {
    switch (info->err->msg_code) {
        case JERR_OUT_OF_MEMORY:
            Exit(info, JpegFault::OutOfMemory);
        case JERR_NO_BACKING_STORE:
            Exit(info, JpegFault::TooMuchMemory);
        case JERR_ARITH_NOTIMPL:
        case JERR_BAD_PRECISION:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_EMPTY_IMAGE:
        case JERR_SOF_UNSUPPORTED:
            Exit(info, JpegFault::Unsupported);
        default:
            break;
    }
    const auto* source = static_cast<Source*>(reinterpret_cast<j_decompress_ptr>(info)->src);
    Exit(info, source && source->endWasMissing ? JpegFault::Incomplete : JpegFault::Damaged);
}

void JpegDecompressor::HandleMessage(j_common_ptr info, int level) {
    constexpr int MaximumStrayBytes = 512;
    if (level >= 0) {
        return;  // a trace
    }
    switch (info->err->msg_code) {
        case JWRN_HIT_MARKER:
            Exit(info, JpegFault::Incomplete);
        case JWRN_ARITH_BAD_CODE:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_MUST_RESYNC:
            Exit(info, JpegFault::Damaged);
        case JWRN_EXTRANEOUS_DATA:
            // A few stray bytes are common, before the pixels any number is harmless.
            if (static_cast<ErrorManager*>(info->err)->pixelsAreRead &&
                info->err->msg_parm.i[0] > MaximumStrayBytes) {
                Exit(info, JpegFault::Damaged);
            }
            break;
        default:
            break;  // the picture is whole all the same
    }
}

// libjpeg itself has no limit for the segments that it keeps, of which there may be any number, and
// goes past all of them for each. Who reads them makes two copies more.
void* JpegDecompressor::AllocateMarker(j_common_ptr info, int pool, size_t bytes) {
    constexpr qint64 MostMarkerBytes = MostBytesBeside / 4;
    constexpr int MostMarkers = 5000;
    auto* errors = static_cast<ErrorManager*>(info->err);
    errors->markerBytes += static_cast<qint64>(bytes);
    if (++errors->markers > MostMarkers) {
        Exit(info, JpegFault::Unsupported);
    }
    if (errors->markerBytes > MostMarkerBytes) {
        Exit(info, JpegFault::TooMuchMemory);
    }
    return errors->allocate(info, pool, bytes);
}

// Each scan of a progressive file costs a pass over the whole picture, however short it is.
void JpegDecompressor::LimitScans(j_common_ptr info) {
    constexpr int MaximumScans = 100;  // cameras and programs write twenty at most
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > MaximumScans) {
        Exit(info, JpegFault::Unsupported);
    }
}

// libjpeg passes over any number of bytes on its way to the next marker. There is more room than
// pixels and segments can take: noise in the best quality has two bytes a channel.
void JpegDecompressor::LimitBytes(j_decompress_ptr info, qint64 count) {
    constexpr qint64 MostOtherBytes = 100'000'000;
    constexpr qint64 MostBytesAPixel = 8;
    // The size is known to be allowed once that of the output is calculated.
    const qint64 pixels =
        info->output_width == 0 ? 0 : qint64{info->image_width} * info->image_height;
    auto* source = static_cast<Source*>(info->src);
    source->bytes += count;
    if (source->bytes > MostOtherBytes + pixels * MostBytesAPixel) {
        Exit(reinterpret_cast<j_common_ptr>(info), JpegFault::Damaged);
    }
}

boolean JpegDecompressor::FillBuffer(j_decompress_ptr info) {
    auto* source = static_cast<Source*>(info->src);
    qint64 count = source->device->read(reinterpret_cast<char*>(source->buffer.data()), BufferSize);
    if (count <= 0) {
        // Not yet an error: the pixels may be complete without the end marker.
        source->endWasMissing = true;
        source->buffer[0] = 0xff;
        source->buffer[1] = JPEG_EOI;
        count = 2;
    }
    LimitBytes(info, count);
    source->next_input_byte = source->buffer.data();
    source->bytes_in_buffer = static_cast<size_t>(count);
    return TRUE;
}

void JpegDecompressor::SkipBytes(j_decompress_ptr info, long count) {
    auto* source = static_cast<Source*>(info->src);
    if (count <= 0) {
        return;
    }
    const auto wanted = static_cast<size_t>(count);
    if (wanted <= source->bytes_in_buffer) {
        source->next_input_byte += wanted;
        source->bytes_in_buffer -= wanted;
        return;
    }
    // What is beyond the end is noticed by the next read.
    source->device->skip(static_cast<qint64>(wanted - source->bytes_in_buffer));
    source->bytes_in_buffer = 0;
}

}  // namespace kadrona::imaging
