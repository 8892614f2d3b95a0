#include "imaging/reading/PngReader.h"

#include <png.h>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdlib>

#include "imaging/pixels/NewImage.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

/// From so many pixels on 16 bits a channel become 8 while they are read: 64 bits a pixel and the
/// finished picture beside them would take too much memory.
constexpr qint64 MostDeepPixels = 32'000'000;

/// Owns libpng's structures for reading a file.
class PngSource {
 public:
    explicit PngSource(QIODevice& device) : device_(device) {
        png_ = png_create_read_struct_2(
            PNG_LIBPNG_VER_STRING, this, Leave, [](auto, auto) {}, this, Allocate,
            [](auto, void* memory) { std::free(memory); });
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_read_fn(png_, this, ReadFromDevice);
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        SkipWhatIsNotOfThePixels();
    }
    ~PngSource() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngSource(const PngSource&) = delete;
    PngSource& operator=(const PngSource&) = delete;

    /// Runs calls of libpng; false where one fails. An error leaves `steps` by longjmp: nothing
    /// with a destructor may live in there.
    template <typename Steps>
    bool Run(const Steps& steps) {
        if (setjmp(exit_) != 0) {
            return false;
        }
        steps(png_, info_);
        return true;
    }

    /// Why a step failed.
    QString Reason() const {
        return outOfMemory_    ? OutOfMemoryReason()
               : endIsMissing_ ? IncompleteFileReason()
                               : DamagedFileReason();
    }

 private:
    /// Texts are the worst: unpacked, a small file has gigabytes of them.
    void SkipWhatIsNotOfThePixels() {
        // Five bytes each; the profile is read by ReadPngProfile, within limits of its own.
        const std::array<png_byte, 60> chunks{
            "tEXt\0zTXt\0iTXt\0iCCP\0eXIf\0sPLT\0"
            "hIST\0pCAL\0sCAL\0pHYs\0oFFs\0tIME"};
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, chunks.data(),
                                    static_cast<int>(chunks.size() / 5));
    }

    [[noreturn]] static void Leave(png_structp png, png_const_charp) {
        std::longjmp(static_cast<PngSource*>(png_get_error_ptr(png))->exit_, 1);
    }

    static png_voidp Allocate(png_structp png, png_alloc_size_t size) {
        void* const memory = std::malloc(size);
        if (!memory) {
            static_cast<PngSource*>(png_get_mem_ptr(png))->outOfMemory_ = true;
        }
        return memory;
    }

    static void ReadFromDevice(png_structp png, png_bytep bytes, size_t count) {
        auto* self = static_cast<PngSource*>(png_get_io_ptr(png));
        const auto length = static_cast<qint64>(count);
        if (self->device_.read(reinterpret_cast<char*>(bytes), length) != length) {
            self->endIsMissing_ = true;
            png_error(png, "");
        }
    }

    QIODevice& device_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf exit_ = {};
    bool outOfMemory_ = false;
    bool endIsMissing_ = false;
};

struct Header {
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    bool deep = false;
    bool grey = false;
    bool alpha = false;
    bool saysSrgb = false;
    /// 0 where the file says nothing.
    double gamma = 0;
    /// x and y of white, red, green, blue; those of sRGB where the file says nothing.
    PrimariesAndWhite primaries = SrgbPrimaries;
};

void ReadHeader(png_structp png, png_infop info, Header& header) {
    png_read_info(png, info);
    header.width = png_get_image_width(png, info);
    header.height = png_get_image_height(png, info);
    header.deep = png_get_bit_depth(png, info) == 16;
    header.grey = !(png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR);
    header.alpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                   png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    header.saysSrgb = png_get_valid(png, info, PNG_INFO_sRGB) != 0;
    double encoding = 0;
    if (png_get_gAMA(png, info, &encoding) && encoding > 0) {
        header.gamma = 1 / encoding;
    }
    PrimariesAndWhite& p = header.primaries;
    png_get_cHRM(png, info, p.data(), &p[1], &p[2], &p[3], &p[4], &p[5], &p[6], &p[7]);
}

/// 1/2.2 is the nearest that this chunk can say of the curve of sRGB.
bool IsGammaOfSrgb(const Header& header) {
    constexpr double Tolerance = 0.005;
    for (size_t i = 0; i < SrgbPrimaries.size(); ++i) {
        if (std::abs(header.primaries[i] - SrgbPrimaries[i]) > Tolerance) {
            return false;
        }
    }
    return std::abs(header.gamma - 2.2) < Tolerance;
}

QByteArray ProfileOf(const Header& header, QIODevice& device) {
    QByteArray profile = ReadPngProfile(device);
    if (!profile.isEmpty()) {
        return profile;
    }
    if (header.saysSrgb || header.gamma == 0 || IsGammaOfSrgb(header)) {
        return {};
    }
    return PrimariesProfile(header.primaries, header.gamma);
}

/// By the file's first chunk, before anything goes through all that lies before the pixels.
void RequireAllowedFile(const ReadTask& task) {
    constexpr qsizetype TypePosition = 12;
    constexpr qsizetype SizePosition = 16;
    const QByteArray start = task.Device().peek(SizePosition + 8);
    if (start.size() < SizePosition + 8 || start.sliced(TypePosition, 4) != "IHDR") {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    platform::ByteReader size(QByteArrayView(start).sliced(SizePosition),
                              platform::ByteOrder::BigEndian);
    const auto width = size.Read<quint32>();
    const auto height = size.Read<quint32>();
    if (width > PNG_UINT_31_MAX || height > PNG_UINT_31_MAX) {
        task.Fail(DamagedFileReason());
    }
    task.RequireAllowedSize(width, height);
    // Uncompressed, with more than any program puts beside them: each chunk takes time.
    constexpr qint64 MostBytesAPixel = 9;
    constexpr qint64 MostOtherBytes = 100'000'000;
    const qint64 most = qint64{width} * height * MostBytesAPixel + MostOtherBytes;
    if (task.Device().size() > most) {
        task.Fail(TooLargeFileReason(most));
    }
}

/// Every kind of pixel becomes four bytes, blue first, or four 16-bit numbers, red first.
void SetTransforms(png_structp png, const Header& header) {
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    if (header.deep) {
        png_set_swap(png);
        png_set_add_alpha(png, 0xffff, PNG_FILLER_AFTER);
    } else {
        png_set_scale_16(png);
        png_set_bgr(png);
        png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
    }
}

QImage DecodeRows(PngSource& png, const Header& header, const ReadTask& task) {
    const QImage::Format format = header.deep    ? QImage::Format_RGBA64
                                  : header.alpha ? QImage::Format_ARGB32
                                                 : QImage::Format_RGB32;
    QImage image =
        NewImage({static_cast<int>(header.width), static_cast<int>(header.height)}, format);
    uchar* const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    // Not all rows at once: a pointer to each would take more than the pixels of a narrow picture.
    if (!png.Run([&](png_structp structure, png_infop) {
            SetTransforms(structure, header);
            const int passes = png_set_interlace_handling(structure);
            png_start_read_image(structure);
            for (int pass = 0; pass < passes; ++pass) {
                for (qsizetype y = 0; y < qsizetype{header.height}; ++y) {
                    png_read_row(structure, bits + y * stride, nullptr);
                }
            }
        })) {
        task.Fail(png.Reason());
    }
    return image;
}

}  // namespace

bool IsPng(QByteArrayView start) {
    return start.startsWith("\x89PNG\r\n\x1a\n");
}

DecodedImage ReadPng(const ReadTask& task) {
    DecodedImage decoded;
    RequireAllowedFile(task);
    PngSource png(task.Device());
    Header header;
    if (!png.Run(
            [&](png_structp structure, png_infop info) { ReadHeader(structure, info, header); })) {
        task.Fail(png.Reason());
    }
    header.deep = header.deep && qint64{header.width} * header.height <= MostDeepPixels;
    const qint64 pixels = task.Device().pos();
    decoded.metadata = ReadFileMetadata(task.Device());
    decoded.profile = ProfileOf(header, task.Device());
    task.Device().seek(pixels);
    if (header.grey) {
        decoded.model = ColourModel::Grey;
    }
    decoded.image = DecodeRows(png, header, task);
    return decoded;
}

}  // namespace kadrona::imaging
