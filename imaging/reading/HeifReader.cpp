#include "imaging/reading/HeifReader.h"

#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "imaging/pixels/NewImage.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// libheif takes about six bytes a pixel beside the result.
constexpr qint64 MostPixels = 50'000'000;

template <auto Destroy>
struct Release {
    void operator()(auto* object) const { Destroy(object); }
};
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
    if (error.subcode == heif_suberror_No_or_invalid_primary_item) {
        return u"Die Datei enthält kein Bild."_s;
    }
    return error.subcode == heif_suberror_End_of_data
               ? IncompleteFileReason()
               : u"Die Datei ist beschädigt oder unvollständig."_s;
}

void Require(const heif_error& error, const ReadTask& task) {
    if (error.code != heif_error_Ok) {
        task.Fail(ReasonOf(error));
    }
}

/// Primaries that are not those of sRGB, where the file names them by number instead of by a
/// profile.
QByteArray ProfileOfNumbers(const heif_image_handle* handle) {
    heif_color_profile_nclx* numbers = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &numbers).code != heif_error_Ok) {
        return {};
    }
    const Nclx nclx(numbers);
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
    if (heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok ||
        IsSrgbProfile(profile)) {
        return {};
    }
    return profile;
}

QImage Decode(const heif_image_handle* handle, const ReadTask& task) {
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    heif_image* decoded = nullptr;
    Require(heif_decode_image(handle, &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                              options.get()),
            task);
    const Picture picture(decoded);
    int stride = 0;
    const uchar* plane =
        heif_image_get_plane_readonly(picture.get(), heif_channel_interleaved, &stride);
    const int width = heif_image_get_width(picture.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(picture.get(), heif_channel_interleaved);
    task.RequireAllowedSize(width, height);
    const bool premultiplied = heif_image_handle_is_premultiplied_alpha(handle) != 0;
    const QImage view(
        plane, width, height, stride,
        premultiplied ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888);
    return RequireAllocated(view.convertToFormat(QImage::Format_ARGB32));
}

DecodedImage Read(const ReadTask& task) {
    const QByteArray file = task.ReadWhole();
    const Context context(heif_context_alloc());
    Require(heif_context_read_from_memory_without_copy(context.get(), file.constData(),
                                                       static_cast<size_t>(file.size()), nullptr),
            task);
    heif_image_handle* primary = nullptr;
    Require(heif_context_get_primary_image_handle(context.get(), &primary), task);
    const Handle handle(primary);
    const int width = heif_image_handle_get_width(primary);
    const int height = heif_image_handle_get_height(primary);
    task.RequireAllowedSize(width, height);
    if (qint64{width} * height > MostPixels) {
        task.Fail(TooMuchMemoryReason());
    }
    // What the picture is put together from may be no larger.
    heif_context_set_maximum_image_size_limit(context.get(), std::max({width, height, 4096}));
    DecodedImage result;
    result.profile = ProfileOf(primary);
    result.image = Decode(primary, task);
    return result;
}

}  // namespace

bool IsHeif(QByteArrayView start) {
    constexpr std::array<QByteArrayView, 8> Brands{"heic", "heix", "heim", "heis",
                                                   "mif1", "msf1", "avif", "avis"};
    return start.size() >= 12 && start.sliced(4, 4) == "ftyp" &&
           std::find(Brands.begin(), Brands.end(), start.sliced(8, 4)) != Brands.end();
}

DecodedImage ReadHeif(const ReadTask& task) try {
    return Read(task);
} catch (const std::length_error&) {
    task.Fail(DamagedFileReason());
}

}  // namespace kadrona::imaging
