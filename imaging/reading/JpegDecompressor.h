#pragma once

#include <QIODevice>
#include <array>

#include "imaging/codec/JpegErrors.h"

namespace kadrona::imaging {

/// Why libjpeg gave up.
enum class JpegFault { Damaged, Incomplete, Unsupported, OutOfMemory, TooMuchMemory };

/// libjpeg over a QIODevice, with its errors as JpegFault exceptions. Data that ends early or that
/// libjpeg finds to make no sense is an error too, where it would warn and go on with grey.
class JpegDecompressor {
 public:
    /// Reads from the device's present position; does not own the device.
    explicit JpegDecompressor(QIODevice& device);
    ~JpegDecompressor();
    JpegDecompressor(const JpegDecompressor&) = delete;
    JpegDecompressor& operator=(const JpegDecompressor&) = delete;

    jpeg_decompress_struct& Info() { return info_; }

    /// Runs a step as JpegErrors::Run does; throws JpegFault.
    template <typename Step>
    void Run(const Step& step) {
        if (!errors_.Run([&] { step(&info_); })) {
            throw errors_.fault;
        }
    }

    /// Reads on to the end marker. Throws JpegFault where much data comes first: the pixels were
    /// made of damaged data that by chance took less than was there.
    void Finish();

    /// True once libjpeg was told of the end of the data instead of finding it there.
    bool EndWasMissing() const { return source_.endWasMissing; }

 private:
    static constexpr size_t BufferSize = 1 << 16;

    // libjpeg knows these by their first member alone.
    struct ErrorManager : JpegErrors {
        JpegFault fault = JpegFault::Damaged;
        bool pixelsAreRead = false;
        decltype(jpeg_memory_mgr::alloc_large) allocate = nullptr;
        qint64 markerBytes = 0;
        int markers = 0;
    };
    struct Source : jpeg_source_mgr {
        QIODevice* device;
        bool endWasMissing;
        qint64 bytes;  ///< read so far
        std::array<JOCTET, BufferSize> buffer;
    };

    [[noreturn]] static void Exit(j_common_ptr info, JpegFault fault);
    [[noreturn]] static void HandleError(j_common_ptr info);
    static void HandleMessage(j_common_ptr info, int level);
    static void LimitScans(j_common_ptr info);
    static void* AllocateMarker(j_common_ptr info, int pool, size_t bytes);
    static void LimitBytes(j_decompress_ptr info, qint64 count);
    static boolean FillBuffer(j_decompress_ptr info);
    static void SkipBytes(j_decompress_ptr info, long count);

    void AttachSource(QIODevice& device);

    jpeg_decompress_struct info_ = {};
    jpeg_progress_mgr progress_ = {};
    ErrorManager errors_;
    Source source_ = {};
};

}  // namespace kadrona::imaging
