#include "imaging/reading/cameras/HeifReader.h"

#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "imaging/codec/Release.h"
#include "imaging/reading/cameras/HeifItems.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Picture = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;
using Nclx = std::unique_ptr<heif_color_profile_nclx, Release<heif_nclx_color_profile_free>>;

QString ReasonOf(const heif_error& error) {
    if (error.code == heif_error_Memory_allocation_error) {
        return error.subcode == heif_suberror_Security_limit_exceeded ? TooMuchMemoryReason()
                                                                      : OutOfMemoryReason();
    }
    if (error.code == heif_error_Unsupported_filetype ||
        error.code == heif_error_Unsupported_feature) {
        return u"Diese Art von HEIF-Datei wird nicht unterstützt."_s;
    }
    constexpr std::array WithoutPicture{heif_suberror_No_or_invalid_primary_item,
                                        heif_suberror_No_pitm_box, heif_suberror_No_iinf_box,
                                        heif_suberror_Nonexisting_item_referenced};
    if (std::find(WithoutPicture.begin(), WithoutPicture.end(), error.subcode) !=
        WithoutPicture.end()) {
        return u"Die Datei enthält kein Bild."_s;
    }
    return error.subcode == heif_suberror_End_of_data ? IncompleteFileReason()
                                                      : DamagedOrIncompleteFileReason();
}

void RequireHeif(const heif_error& error, const ReadTask& task) {
    if (error.code != heif_error_Ok) {
        task.Fail(ReasonOf(error));
    }
}

/// Primaries that are not those of sRGB, where the file names them by number instead of by a
/// profile.
QByteArray ProfileOfNumbers(const heif_image_handle* handle) {
    heif_color_profile_nclx* numbers = nullptr;
    const int code = heif_image_handle_get_nclx_color_profile(handle, &numbers).code;
    const Nclx nclx(numbers);  // there even where a number of the file is an unknown one
    if (code != heif_error_Ok) {
        return {};
    }
    if (nclx->color_primaries == heif_color_primaries_ITU_R_BT_709_5 ||
        nclx->color_primaries == heif_color_primaries_unspecified) {
        return {};
    }
    constexpr double CurveOfSrgb = 0;
    return PrimariesProfile(
        {nclx->color_primary_white_x, nclx->color_primary_white_y, nclx->color_primary_red_x,
         nclx->color_primary_red_y, nclx->color_primary_green_x, nclx->color_primary_green_y,
         nclx->color_primary_blue_x, nclx->color_primary_blue_y},
        CurveOfSrgb);
}

QByteArray ProfileOf(const heif_image_handle* handle) {
    constexpr size_t LargestProfile = 1 << 24;
    const size_t size = heif_image_handle_get_raw_color_profile_size(handle);
    if (size == 0 || size > LargestProfile) {
        return ProfileOfNumbers(handle);
    }
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    const heif_error error = heif_image_handle_get_raw_color_profile(handle, profile.data());
    return error.code == heif_error_Ok ? profile : QByteArray();
}

/// What libheif takes for a pixel beside the result, as measured.
int BytesBeside(const heif_image_handle* handle, const HeifWork& work) {
    const bool isFine = work.chroma > 1;
    const bool isWhole = work.chroma > 2;
    const int ofAv1 = work.isDeep ? (isWhole  ? 22
                                     : isFine ? 14
                                              : 10)
                      : isWhole   ? 9
                      : isFine    ? 5
                                  : 3;
    const int ofHevc = work.isDeep ? 10 : isFine ? 5 : 3;
    const bool hasAlpha = heif_image_handle_has_alpha_channel(handle) != 0;
    return (work.hasAv1 ? ofAv1 : ofHevc) + (!hasAlpha ? 0 : work.isDeep ? 6 : 3);
}

/// What is decoded may be larger than what is shown of it, and coded with many bytes, but then it
/// is no photo of a camera.
void RequireMemory(const heif_image_handle* handle, const HeifWork& work, qint64 fileBytes,
                   const ReadTask& task) {
    constexpr qint64 CopiesOfCoded = 3;
    constexpr qint64 MostCodedBytesAPixel = 8;
    const qint64 shown =
        qint64{heif_image_handle_get_width(handle)} * heif_image_handle_get_height(handle);
    const qint64 decoded = std::max(shown, work.pixels);
    const qint64 much = std::max<qint64>(work.bytes - shown * MostCodedBytesAPixel, 0);
    const int bytes = BytesBeside(handle, work);
    task.RequireMemoryBeside(fileBytes + CopiesOfCoded * much + (decoded - shown) * bytes);
    task.RequireMemoryBeside(fileBytes + CopiesOfCoded * much + decoded * bytes,
                             MostBytesBesideOfCameras);
}

/// One channel of a decoded picture. Not there where the picture has none.
class HeifChannel {
 public:
    HeifChannel(const heif_image* picture, heif_channel channel)
        : bytes_(heif_image_get_plane_readonly(picture, channel, &stride_)),
          bits_(heif_image_get_bits_per_pixel_range(picture, channel)) {}
    bool IsThere() const { return bytes_ != nullptr; }

    /// As 8 bits.
    int At(int x, int y) const {
        const uchar* const row = bytes_ + qsizetype{y} * stride_;
        return bits_ <= 8 ? row[x] : reinterpret_cast<const quint16*>(row)[x] >> (bits_ - 8);
    }

 private:
    int stride_ = 0;
    const uchar* bytes_;
    int bits_;
};

/// Codecs fill pictures up to whole blocks.
constexpr int LargestBlock = 128;

QSize SizeOf(const heif_image* picture, heif_channel channel) {
    return {heif_image_get_width(picture, channel), heif_image_get_height(picture, channel)};
}

/// One pixel after the other.
QImage Interleaved(const heif_image* picture, bool premultiplied, const ReadTask& task) {
    const HeifChannel red(picture, heif_channel_R);
    const HeifChannel green(picture, heif_channel_G);
    const HeifChannel blue(picture, heif_channel_B);
    const HeifChannel alpha(picture, heif_channel_Alpha);
    if (!red.IsThere() || !green.IsThere() || !blue.IsThere()) {
        task.Fail(DamagedFileReason());
    }
    const QSize size = SizeOf(picture, heif_channel_R);
    if (SizeOf(picture, heif_channel_G) != size || SizeOf(picture, heif_channel_B) != size ||
        (alpha.IsThere() && SizeOf(picture, heif_channel_Alpha) != size)) {
        task.Fail(DamagedFileReason());
    }
    const int width = size.width();
    const int height = size.height();
    task.RequireAllowedSize(width, height);
    QImage image = task.NewPicture({width, height},
                                   alpha.IsThere() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int opacity = alpha.IsThere() ? alpha.At(x, y) : 255;
            const QRgb pixel = qRgba(red.At(x, y), green.At(x, y), blue.At(x, y), opacity);
            row[x] = premultiplied ? qUnpremultiply(pixel) : pixel;
        }
    }
    return image;
}

QImage Decode(const heif_image_handle* handle, const ReadTask& task) {
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    heif_image* decoded = nullptr;
    // Interleaved already, a copy more of the picture would be in memory.
    RequireHeif(
        heif_decode_image(handle, &decoded, heif_colorspace_RGB, heif_chroma_444, options.get()),
        task);
    const Picture picture(decoded);
    const QSize size = SizeOf(decoded, heif_channel_R);
    if (size.width() > heif_image_handle_get_width(handle) + LargestBlock ||
        size.height() > heif_image_handle_get_height(handle) + LargestBlock) {
        task.Fail(DamagedFileReason());
    }
    return Interleaved(picture.get(), heif_image_handle_is_premultiplied_alpha(handle) != 0, task);
}

DecodedImage Read(const ReadTask& task) {
    const QByteArray file = task.ReadWhole();
    const HeifWork work = RequireSoundItems(file, task);
    const Context context(heif_context_alloc());
    RequireHeif(heif_context_read_from_memory_without_copy(
                    context.get(), file.constData(), static_cast<size_t>(file.size()), nullptr),
                task);
    heif_image_handle* primary = nullptr;
    RequireHeif(heif_context_get_primary_image_handle(context.get(), &primary), task);
    const Handle handle(primary);
    const int width = heif_image_handle_get_width(primary);
    const int height = heif_image_handle_get_height(primary);
    task.RequireAllowedSize(width, height);
    RequireMemory(primary, work, file.size(), task);
    // What the picture is put together from may be no larger, but for what codecs fill up with.
    heif_context_set_maximum_image_size_limit(context.get(),
                                              std::max({width, height, 4096}) + LargestBlock);
    DecodedImage result;
    result.profile = ProfileOf(primary);
    result.image = Decode(primary, task);
    return result;
}

}  // namespace

void PrepareHeif() {
    (void)heif_init(nullptr);
}

DecodedImage DecodeHeif(const ReadTask& task) try {
    return Read(task);
} catch (const std::length_error&) {
    task.Fail(DamagedFileReason());
}

}  // namespace kadrona::imaging
