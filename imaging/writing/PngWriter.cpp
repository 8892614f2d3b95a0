#include "imaging/writing/PngWriter.h"

#include <png.h>

#include <array>
#include <csetjmp>
#include <vector>

#include "imaging/writing/RowSource.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// Twice as fast as the next level and the other filters, for less than a twentieth of the size.
constexpr int PngCompressionLevel = 2;
constexpr int Filter = PNG_FILTER_SUB;

/// Owns libpng's structures for writing a file.
class PngFile {
 public:
    explicit PngFile(QIODevice& device) : target_{device} {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, JumpOnError, [](auto, auto) {});
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, nullptr);
            throw std::bad_alloc();
        }
        png_set_write_fn(png_, this, WriteToDevice, [](auto) {});
    }
    ~PngFile() { png_destroy_write_struct(&png_, &info_); }
    PngFile(const PngFile&) = delete;
    PngFile& operator=(const PngFile&) = delete;

    /// Runs calls of libpng; what fails in one throws platform::Error. An error leaves `steps` by
    /// longjmp: nothing with a destructor may live in there.
    template <typename Steps>
    void Run(const Steps& steps) {
        if (setjmp(jump_) != 0) {
            target_.Fail();
        }
        steps(png_, info_);
    }

 private:
    [[noreturn]] static void JumpOnError(png_structp png, png_const_charp message) {
        auto* self = static_cast<PngFile*>(png_get_error_ptr(png));
        self->target_.KeepMessage(u"PNG"_s, QString::fromUtf8(message));
        std::longjmp(self->jump_, 1);
    }

    static void WriteToDevice(png_structp png, png_bytep bytes, size_t count) {
        auto* self = static_cast<PngFile*>(png_get_io_ptr(png));
        if (!self->target_.Write(bytes, static_cast<qint64>(count))) {
            png_error(png, "");
        }
    }

    CodecTarget target_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf jump_ = {};
};

void WriteHeader(png_structp png, png_infop info, const RowSource& rows, DotsPerInch resolution,
                 const WrittenMetadata& metadata) {
    constexpr int BitsPerChannel = 8;
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, static_cast<png_uint_32>(rows.Width()),
                 static_cast<png_uint_32>(rows.Height()), BitsPerChannel, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    if (resolution.value > 0) {
        const auto dotsPerMetre = static_cast<png_uint_32>(DotsPerMetre(resolution));
        png_set_pHYs(png, info, dotsPerMetre, dotsPerMetre, PNG_RESOLUTION_METER);
    }
    if (!metadata.software.isEmpty()) {
        std::array<char, 9> keyword{"Software"};
        png_text text{};
        text.compression = PNG_TEXT_COMPRESSION_NONE;
        text.key = keyword.data();
        text.text = const_cast<char*>(metadata.software.constData());  // libpng copies it
        png_set_text(png, info, &text, 1);
    }
    png_write_info(png, info);
}

}  // namespace

void WritePng(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const WrittenMetadata& metadata) {
    const RowSource rows(pixels, ChannelOrder::RedFirst);
    std::vector<uchar> row(static_cast<size_t>(rows.BytesPerRow()));
    PngFile file(device);
    file.Run([&](png_structp png, png_infop info) {
        png_set_compression_level(png, PngCompressionLevel);
        png_set_filter(png, PNG_FILTER_TYPE_BASE, Filter);
        WriteHeader(png, info, rows, resolution, metadata);
        for (int y = 0; y < rows.Height(); ++y) {
            rows.CopyRow(y, row.data());
            png_write_row(png, row.data());
        }
        png_write_end(png, info);
    });
}

}  // namespace kadrona::imaging
