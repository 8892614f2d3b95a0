#include "imaging/reading/cameras/RawDevelopment.h"

#include <algorithm>

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

using CheckOfResult = std::function<void(int result)>;

/// What is developed, red first, three bytes a pixel.
QImage TakenOut(LibRaw& raw, const CheckOfResult& check) {
    int width = 0;
    int height = 0;
    int colours = 0;
    int bits = 0;
    raw.get_mem_image_format(&width, &height, &colours, &bits);
    constexpr int RgbColours = 3;
    check(colours == RgbColours ? LIBRAW_SUCCESS : LIBRAW_FILE_UNSUPPORTED);
    QImage image = NewImage({width, height}, QImage::Format_RGB888);
    check(raw.copy_mem_image(image.bits(), static_cast<int>(image.bytesPerLine()), 0));
    raw.free_image();
    return image;
}

/// Brightness and white balance follow from the whole picture. They are found in a picture of half
/// its width, which takes two bytes a pixel, and set for all bands.
void FixWhatTheWholeDecides(LibRaw& raw, const CheckOfResult& check) {
    libraw_output_params_t& parameters = raw.imgdata.params;
    parameters.half_size = 1;
    check(raw.dcraw_process());
    raw.free_image();
    parameters.half_size = 0;
    parameters.user_sat = static_cast<int>(raw.imgdata.color.maximum);
    parameters.use_camera_wb = 0;
    std::copy_n(raw.imgdata.color.pre_mul, 4, parameters.user_mul);
}

void CopyRows(const QImage& band, int from, QImage& target, int to, int count) {
    for (int y = 0; y < count; ++y) {
        const uchar* in = band.constScanLine(from + y);
        auto* const row = reinterpret_cast<QRgb*>(target.scanLine(to + y));
        for (int x = 0; x < target.width(); ++x, in += 3) {
            row[x] = qRgb(in[0], in[1], in[2]);
        }
    }
}

/// Each band is developed with rows above and below it, which make its own what they are in the
/// whole: the colours of a pixel are found from those around it.
QImage InBands(LibRaw& raw, const NewPictureOfRaw& newPicture, const CheckOfResult& check,
               const std::function<void(double begin, double end)>& onPart) {
    constexpr int BandPixels = 2'000'000;
    // Where a sensor's pattern of filters begins anew, of 2, 6 or 8 rows.
    constexpr int Period = 24;
    constexpr double MeasuringPart = 0.1;
    const QSize size(raw.imgdata.sizes.width, raw.imgdata.sizes.height);
    onPart(0, MeasuringPart);
    FixWhatTheWholeDecides(raw, check);
    QImage result = newPicture(size);
    const int rows = std::max(BandPixels / size.width() / Period, 2) * Period;
    const auto partAt = [&size](int y) {
        return MeasuringPart + (1 - MeasuringPart) * std::min(y, size.height()) / size.height();
    };
    for (int top = 0; top < size.height(); top += rows) {
        onPart(partAt(top), partAt(top + rows));
        const int first = std::max(top - Period, 0);
        const int end = std::min(top + rows + Period, size.height());
        unsigned* const box = raw.imgdata.params.cropbox;
        box[0] = 0;
        box[1] = static_cast<unsigned>(first);
        box[2] = static_cast<unsigned>(size.width());
        box[3] = static_cast<unsigned>(end - first);
        check(raw.dcraw_process());
        CopyRows(TakenOut(raw, check), top - first, result, top,
                 std::min(rows, size.height() - top));
    }
    raw.recycle();
    return result;
}

/// As far as is known, more so once the data are unpacked.
bool GoesInBands(LibRaw& raw) {
    constexpr unsigned FirstMosaic = 1000;
    constexpr unsigned SixBySix = LIBRAW_XTRANS;
    const unsigned filters = raw.imgdata.idata.filters;
    const libraw_rawdata_t& data = raw.imgdata.rawdata;
    return (filters >= FirstMosaic || filters == SixBySix) && !raw.is_fuji_rotated() &&
           raw.imgdata.sizes.pixel_aspect == 1 && (!data.raw_alloc || data.raw_image);
}

}  // namespace

qint64 RawBytesBeside(LibRaw& raw) {
    constexpr qint64 Band = 30'000'000;
    const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
    const qint64 pixels =
        qint64{std::max(sizes.width, sizes.raw_width)} * std::max(sizes.height, sizes.raw_height);
    constexpr qint64 Unpacked = 2;
    constexpr double UnpackedAndWhole = 15;
    // Pixels that are no squares are stretched to such.
    const double stretch = std::max(sizes.pixel_aspect, 1 / sizes.pixel_aspect);
    return GoesInBands(raw) ? pixels * Unpacked + Band
                            : static_cast<qint64>(double(pixels) * stretch * UnpackedAndWhole);
}

QImage DevelopedRaw(LibRaw& raw, const NewPictureOfRaw& newPicture,
                    const std::function<void(int result)>& check,
                    const std::function<void(double begin, double end)>& onPart) {
    if (GoesInBands(raw)) {
        return InBands(raw, newPicture, check, onPart);
    }
    onPart(0, 1);
    check(raw.dcraw_process());
    const QImage image = TakenOut(raw, check);
    raw.recycle();
    QImage result = newPicture(image.size());
    CopyRows(image, 0, result, 0, image.height());
    return result;
}

}  // namespace kadrona::imaging
