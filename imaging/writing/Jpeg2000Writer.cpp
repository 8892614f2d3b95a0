#include "imaging/writing/Jpeg2000Writer.h"

#include <QDataStream>
#include <algorithm>
#include <array>
#include <opencv2/core.hpp>
#include <vector>

#include "imaging/codec/OpenJpeg.h"
#include "imaging/metadata/ExifBlock.h"
#include "imaging/writing/RowSource.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

/// A JP2 file (ITU-T T.800, Annex I). OpenJPEG writes only the codestream: its own file has no
/// place for the resolution.
///
///     jP, ftyp
///     jp2h            ihdr size, colr sRGB, res resolution
///     uuid            EXIF
///     jp2c            codestream: a tile for each strip of rows
namespace kadrona::imaging {

namespace {

/// Signal to noise in decibels: about the size that JPEG has at quality 95, which keeps photos with
/// noise at 36 to 46. Unlike a fixed rate it spends nothing on a plain background.
constexpr float Quality = 44;

/// A strip of about this size is encoded at a time; it takes some 100 MiB while it is.
constexpr int StripPixels = 4'194'304;

/// Strips begin where code blocks of the first wavelet level do, so that none is cut in two.
constexpr int StripStep = 128;

/// Wider pictures would make the lowest strip take too much memory.
constexpr int MaximumWidth = 65535;

/// Largest resolution that the box can hold.
constexpr int MaximumDotsPerInch = 65535;

QByteArray Box(const char* type, const QByteArray& content) {
    QByteArray box;
    QDataStream(&box, QIODevice::WriteOnly) << static_cast<quint32>(8 + content.size());
    return box + type + content;
}

template <typename... Numbers>
QByteArray BigEndian(Numbers... numbers) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << numbers);
    return bytes;
}

/// The capture resolution in dots per metre: dots per inch / 254 * 10^4, exact for every integer.
QByteArray ResolutionBox(DotsPerInch resolution) {
    const auto numerator = static_cast<quint16>(resolution.value);
    constexpr quint16 Denominator = 254;
    constexpr qint8 Exponent = 4;
    return Box("res ", Box("resc", BigEndian(numerator, Denominator, numerator, Denominator,
                                             Exponent, Exponent)));
}

/// Everything before the codestream.
QByteArray Header(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata) {
    constexpr quint16 Channels = RowSource::BytesPerPixel;
    constexpr quint8 EightBits = 7;
    constexpr quint8 WaveletCompression = 7;
    constexpr quint8 Enumerated = 1;
    constexpr quint32 Srgb = 16;
    QByteArray about = Box("ihdr", BigEndian(size.height(), size.width(), Channels, EightBits,
                                             WaveletCompression, quint8{0}, quint8{0})) +
                       Box("colr", BigEndian(Enumerated, quint8{0}, quint8{0}, Srgb));
    if (resolution.value > 0) {
        about += ResolutionBox(resolution);
    }
    QByteArray header = Box("jP  ", "\r\n\x87\n") +
                        Box("ftyp", "jp2 " + BigEndian(quint32{0}) + "jp2 ") + Box("jp2h", about);
    if (resolution.value > 0 || !metadata.software.isEmpty()) {
        header += Box("uuid", "JpgTiffExif->JP2" + ExifBlock(size, resolution, metadata));
    }
    constexpr quint32 ToTheEndOfTheFile = 0;
    return header + BigEndian(ToTheEndOfTheFile) + "jp2c";
}

OPJ_SIZE_T WriteToDevice(void* bytes, OPJ_SIZE_T count, void* user) {
    auto* target = static_cast<CodecTarget*>(user);
    return target->Write(bytes, static_cast<qint64>(count)) ? count : static_cast<OPJ_SIZE_T>(-1);
}

void KeepReason(const char* message, void* user) {
    static_cast<CodecTarget*>(user)->KeepMessage(u"JPEG-2000"_s, QString::fromUtf8(message));
}

int RowsPerTile(const RowSource& rows) {
    const int wanted = StripPixels / rows.Width() / StripStep * StripStep;
    return std::min(std::max(wanted, StripStep), rows.Height());
}

opj_cparameters_t Parameters(int stripWidth, int stripHeight) {
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tdx = stripWidth;
    parameters.cp_tdy = stripHeight;
    parameters.irreversible = 1;
    parameters.tcp_mct = 1;  // luminance and chroma apart
    parameters.tcp_numlayers = 1;
    parameters.cp_fixed_quality = 1;
    parameters.tcp_distoratio[0] = Quality;
    while (parameters.numresolution > 1 &&
           1 << (parameters.numresolution - 1) > std::min(stripWidth, stripHeight)) {
        --parameters.numresolution;
    }
    return parameters;
}

OpenJpegImage ImageOf(QSize size) {
    std::array<opj_image_cmptparm_t, RowSource::BytesPerPixel> channels{};
    for (opj_image_cmptparm_t& channel : channels) {
        channel.dx = channel.dy = 1;
        channel.w = static_cast<OPJ_UINT32>(size.width());
        channel.h = static_cast<OPJ_UINT32>(size.height());
        channel.prec = 8;
    }
    OpenJpegImage image(opj_image_tile_create(channels.size(), channels.data(), OPJ_CLRSPC_SRGB));
    if (image) {
        image->x1 = static_cast<OPJ_UINT32>(size.width());
        image->y1 = static_cast<OPJ_UINT32>(size.height());
    }
    return image;
}

/// Puts rows into `strip` as OpenJPEG takes them: all of red, then green, then blue.
void CopyStrip(const RowSource& rows, int first, int count, std::vector<uchar>& strip) {
    std::vector<uchar> row(static_cast<size_t>(rows.BytesPerRow()));
    const cv::Mat mixed(1, rows.Width(), CV_8UC3, row.data());
    const size_t width = row.size() / RowSource::BytesPerPixel;
    const size_t plane = width * static_cast<size_t>(count);
    strip.resize(plane * RowSource::BytesPerPixel);
    for (int y = 0; y < count; ++y) {
        rows.CopyRow(first + y, row.data());
        uchar* target = strip.data() + static_cast<size_t>(y) * width;
        std::array<cv::Mat, RowSource::BytesPerPixel> planes;
        for (size_t channel = 0; channel < planes.size(); ++channel) {
            planes.at(channel) = cv::Mat(1, rows.Width(), CV_8UC1, target + channel * plane);
        }
        cv::split(mixed, planes.data());
    }
}

bool WriteStrips(opj_codec_t* codec, opj_stream_t* stream, const RowSource& rows) {
    const int rowsPerStrip = RowsPerTile(rows);
    std::vector<uchar> strip;
    for (int first = 0; first < rows.Height(); first += rowsPerStrip) {
        CopyStrip(rows, first, std::min(rowsPerStrip, rows.Height() - first), strip);
        if (!opj_write_tile(codec, static_cast<OPJ_UINT32>(first / rowsPerStrip), strip.data(),
                            static_cast<OPJ_UINT32>(strip.size()), stream)) {
            return false;
        }
    }
    return true;
}

bool WriteCodestream(CodecTarget& target, const RowSource& rows) {
    const OpenJpegImage image = ImageOf({rows.Width(), rows.Height()});
    const OpenJpegCodec codec(opj_create_compress(OPJ_CODEC_J2K));
    const OpenJpegStream stream(opj_stream_default_create(OPJ_FALSE));
    if (!image || !codec || !stream) {
        throw std::bad_alloc();
    }
    opj_set_error_handler(codec.get(), KeepReason, &target);
    opj_stream_set_user_data(stream.get(), &target, nullptr);
    opj_stream_set_write_function(stream.get(), WriteToDevice);
    opj_cparameters_t parameters = Parameters(rows.Width(), RowsPerTile(rows));
    return opj_setup_encoder(codec.get(), &parameters, image.get()) &&
           opj_codec_set_threads(codec.get(), opj_get_num_cpus()) &&
           opj_start_compress(codec.get(), image.get(), stream.get()) &&
           WriteStrips(codec.get(), stream.get(), rows) &&
           opj_end_compress(codec.get(), stream.get());
}

}  // namespace

void WriteJpeg2000(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
                   const WrittenMetadata& metadata) {
    if (pixels.Width() > MaximumWidth) {
        throw platform::Error(
            u"JPEG 2000 kann höchstens %1 Bildpunkte breit geschrieben werden, das Bild hat %2."_s
                .arg(MaximumWidth)
                .arg(pixels.Width()));
    }
    if (resolution.value > MaximumDotsPerInch) {
        throw platform::Error(
            u"JPEG 2000 fasst eine Auflösung von höchstens %1 dpi, das Bild hat %2."_s
                .arg(MaximumDotsPerInch)
                .arg(resolution.value));
    }
    const RowSource rows(pixels, ChannelOrder::RedFirst);
    const QByteArray header = Header(pixels.Size(), resolution, metadata);
    WriteBytes(device, header.constData(), header.size());
    CodecTarget target{device};
    if (!WriteCodestream(target, rows)) {
        target.Fail();
    }
}

}  // namespace kadrona::imaging
