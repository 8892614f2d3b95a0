#include "imaging/writing/TiffWriter.h"

#include <tiffio.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

#include "imaging/codec/Release.h"
#include "imaging/writing/RowSource.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// A strip of about this size is compressed at a time; readers take one into memory at once.
constexpr qint64 StripBytes = 262'144;

/// Higher levels take twice the time for less than a tenth of the size.
constexpr int DeflateLevel = 1;

tmsize_t WriteToDevice(thandle_t handle, void* bytes, tmsize_t count) {
    return static_cast<CodecTarget*>(handle)->Write(bytes, count) ? count : -1;
}

toff_t SeekInDevice(thandle_t handle, toff_t offset, int whence) {
    auto* target = static_cast<CodecTarget*>(handle);
    QIODevice& device = target->device;
    auto position = static_cast<qint64>(offset);
    if (whence == SEEK_CUR) {
        position += device.pos();
    } else if (whence == SEEK_END) {
        position += device.size();
    }
    if (!device.seek(position)) {
        target->KeepReason(FailureOf(device));
        return static_cast<toff_t>(-1);
    }
    return static_cast<toff_t>(position);
}

int KeepReason(TIFF*, void* handle, const char*, const char* format, va_list arguments) {
    static_cast<CodecTarget*>(handle)->KeepMessage(u"TIFF"_s,
                                                   QString::vasprintf(format, arguments));
    return 1;
}

using TiffFile = std::unique_ptr<TIFF, Release<TIFFClose>>;

TiffFile OpenTiff(CodecTarget& target) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), KeepReason, &target);
    TIFFOpenOptionsSetWarningHandlerExtR(
        options.get(), [](TIFF*, void*, const char*, const char*, va_list) { return 1; }, nullptr);
    return TiffFile(TIFFClientOpenExt(
        "", "w", &target, [](thandle_t, void*, tmsize_t) { return tmsize_t{-1}; }, WriteToDevice,
        SeekInDevice, [](thandle_t) { return 0; },
        [](thandle_t handle) {
            return static_cast<toff_t>(static_cast<CodecTarget*>(handle)->device.size());
        },
        nullptr, nullptr, options.get()));
}

int RowsPerStrip(const RowSource& rows) {
    return static_cast<int>(
        std::clamp(StripBytes / rows.BytesPerRow(), qint64{1}, qint64{rows.Height()}));
}

bool SetFields(TIFF* tiff, const RowSource& rows, DotsPerInch resolution,
               const WrittenMetadata& metadata) {
    const QByteArray profile = SrgbProfile();
    bool done =
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<quint32>(rows.Width())) &&
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<quint32>(rows.Height())) &&
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, RowSource::BytesPerPixel) &&
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<quint32>(RowsPerStrip(rows))) &&
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
        TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, DeflateLevel) &&
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<quint32>(profile.size()),
                     profile.constData());
    if (done && resolution.value > 0) {
        const auto dotsPerInch = static_cast<double>(resolution.value);
        done = TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
               TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dotsPerInch) &&
               TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dotsPerInch);
    }
    if (done && !metadata.software.isEmpty()) {
        done = TIFFSetField(tiff, TIFFTAG_SOFTWARE, metadata.software.constData());
    }
    return done;
}

bool WriteStrips(TIFF* tiff, const RowSource& rows) {
    const int rowsPerStrip = RowsPerStrip(rows);
    const auto stride = static_cast<size_t>(rows.BytesPerRow());
    std::vector<uchar> strip(stride * static_cast<size_t>(rowsPerStrip));
    for (int first = 0; first < rows.Height(); first += rowsPerStrip) {
        const int present = std::min(rowsPerStrip, rows.Height() - first);
        for (int row = 0; row < present; ++row) {
            rows.CopyRow(first + row, strip.data() + static_cast<size_t>(row) * stride);
        }
        if (TIFFWriteEncodedStrip(tiff, static_cast<quint32>(first / rowsPerStrip), strip.data(),
                                  present * rows.BytesPerRow()) < 0) {
            return false;
        }
    }
    return TIFFWriteDirectory(tiff) != 0;
}

}  // namespace

void WriteTiff(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
               const WrittenMetadata& metadata) {
    const RowSource rows(pixels, ChannelOrder::RedFirst);
    if (rows.BytesPerRow() * rows.Height() > std::numeric_limits<quint32>::max()) {
        throw platform::Error(u"Das Bild ist zu groß: TIFF fasst höchstens 4 GiB."_s);
    }
    CodecTarget target{device};
    const TiffFile file = OpenTiff(target);
    if (!file || !SetFields(file.get(), rows, resolution, metadata) ||
        !WriteStrips(file.get(), rows)) {
        target.Fail();
    }
}

}  // namespace kadrona::imaging
