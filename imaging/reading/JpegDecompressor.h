#pragma once

#include <QIODevice>
#include <array>
#include <csetjmp>
#include <cstdio>

// jpeglib.h does not include what it needs.
// clang-format off
#include <jpeglib.h>
// clang-format on

namespace kadrona::imaging {

/// Why libjpeg gave up.
enum class JpegFault { Damaged, Incomplete, Unsupported, OutOfMemory };

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

    /// Runs a step that calls libjpeg; throws JpegFault. libjpeg leaves a failing step by longjmp:
    /// no object with a destructor may live in it, and it must not throw.
    template <typename Step>
    void Run(const Step& step) {
        if (setjmp(errors_.exit) != 0) {
            throw errors_.fault;
        }
        step(&info_);
    }

    /// Reads on to the end marker. Throws JpegFault where much data comes first: the pixels were
    /// made of damaged data that by chance took less than was there.
    void Finish();

    /// True once libjpeg was told of the end of the data instead of finding it there.
    bool EndWasMissing() const { return source_.endWasMissing; }

 private:
    static constexpr size_t BufferSize = 1 << 16;

    // libjpeg knows these by their first member alone.
    struct ErrorManager : jpeg_error_mgr {
        std::jmp_buf exit;
        JpegFault fault;
        bool pixelsAreRead;
    };
    struct Source : jpeg_source_mgr {
        QIODevice* device;
        bool endWasMissing;
        std::array<JOCTET, BufferSize> buffer;
    };

    [[noreturn]] static void Exit(j_common_ptr info, JpegFault fault);
    [[noreturn]] static void HandleError(j_common_ptr info);
    static void HandleMessage(j_common_ptr info, int level);
    static void LimitScans(j_common_ptr info);
    static boolean FillBuffer(j_decompress_ptr info);
    static void SkipBytes(j_decompress_ptr info, long count);

    void AttachSource(QIODevice& device);

    jpeg_decompress_struct info_ = {};
    jpeg_progress_mgr progress_ = {};
    ErrorManager errors_ = {};
    Source source_ = {};
};

}  // namespace kadrona::imaging
