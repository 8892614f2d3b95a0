#include "imaging/reading/cameras/Jpeg2000Reader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "imaging/codec/OpenJpeg.h"
#include "imaging/metadata/Jpeg2000Boxes.h"
#include "imaging/reading/cameras/Jpeg2000Blocks.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

const QByteArrayView CodestreamSignature("\xff\x4f\xff\x51", 4);

constexpr int MostChannels = 4;

/// What the codestream's first segment says (ITU-T T.800, A.5.1).
struct Layout {
    qint64 width = 0;
    qint64 height = 0;
    qint64 tileWidth = 0;
    qint64 tileHeight = 0;
    qint64 tiles = 0;
    int channels = 0;
};

/// At most so many that no product of two overflows.
qint64 CountOf(qint64 length, qint64 part) {
    constexpr qint64 Countless = 1 << 30;
    return std::min((length + part - 1) / part, Countless);
}

Layout ReadLayout(QIODevice& device, qint64 codestream) {
    constexpr qint64 SegmentBytes = 42;
    device.seek(codestream);
    const QByteArray bytes = device.read(SegmentBytes);
    platform::ByteReader reader(bytes, platform::ByteOrder::BigEndian);
    reader.Skip(8);
    std::array<qint64, 8> numbers{};
    for (qint64& number : numbers) {
        number = reader.Read<quint32>();
    }
    const auto& [right, bottom, left, top, tileWidth, tileHeight, tileLeft, tileTop] = numbers;
    if (left >= right || top >= bottom || tileLeft > left || tileTop > top || tileWidth == 0 ||
        tileHeight == 0) {
        throw platform::OutOfBytes();
    }
    Layout layout{right - left, bottom - top};
    layout.tileWidth = std::min(tileWidth, layout.width);
    layout.tileHeight = std::min(tileHeight, layout.height);
    layout.tiles = CountOf(right - tileLeft, tileWidth) * CountOf(bottom - tileTop, tileHeight);
    layout.channels = reader.Read<quint16>();
    return layout;
}

/// How many channels a palette makes of one, beside it; 0 without one. `boxes` is what stands
/// before the codestream: the library takes a palette in whatever box it finds it (ITU-T T.800,
/// I.5.3.4).
int PaletteChannels(QByteArrayView boxes) {
    constexpr QByteArrayView Type("pclr");
    constexpr qsizetype LengthBytes = 4;
    int most = 0;
    for (qsizetype at = boxes.indexOf(Type, LengthBytes); at >= 0;
         at = boxes.indexOf(Type, at + Type.size())) {
        platform::ByteReader reader(boxes.sliced(at - LengthBytes), platform::ByteOrder::BigEndian);
        const auto length = reader.Read<quint32>();
        if (std::cmp_greater(length, LengthBytes + reader.Remaining())) {
            continue;  // letters of a text
        }
        reader.Skip(Type.size() + (length == 1 ? 8 : 0));  // then the length follows
        reader.Skip(2);                                    // how many colours
        most = std::max<int>(most, reader.Read<quint8>());
    }
    return most;
}

QString UnsupportedJpeg2000Reason() {
    return u"Diese Art von JPEG-2000-Datei wird nicht unterstützt."_s;
}

void RequireAllowed(const ReadTask& task, const Layout& layout, qint64 codestream) {
    constexpr qint64 MostTiles = 16'384;  // each takes some six kilobytes
    constexpr qint64 BytesPerSample = 4;  // of a tile that is decoded
    constexpr qint64 BytesPerBlock = 600;
    constexpr qint64 BytesPerPacket = 2;
    constexpr qint64 MostPackets = 20'000'000;  // some seconds
    task.RequireAllowedSize(layout.width, layout.height);
    if (layout.channels < 1 || layout.channels > MostChannels) {
        task.Fail(UnsupportedJpeg2000Reason());
    }
    if (layout.tiles > MostTiles) {
        task.Fail(TooMuchMemoryReason());
    }
    const QSize tile(static_cast<int>(layout.tileWidth), static_cast<int>(layout.tileHeight));
    const auto work = WorkOfJpeg2000Tile(task.Device(), codestream, tile, layout.channels);
    if (!work) {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    if (work->packets > MostPackets / layout.tiles) {
        task.Fail(TooMuchMemoryReason());
    }
    const int made = PaletteChannels(QByteArrayView(task.ReadWhole()).first(codestream));
    if (made > MostChannels) {
        task.Fail(UnsupportedJpeg2000Reason());
    }
    const qint64 samples = layout.tileWidth * layout.tileHeight * layout.channels;
    task.RequireMemoryBeside(
        task.Device().size() +
        (samples + layout.tileWidth * layout.tileHeight * made) * BytesPerSample +
        (samples / work->smallestBlock - samples / UsualJpeg2000Block) * BytesPerBlock +
        work->packets * BytesPerPacket);
}

OPJ_SIZE_T ReadFromDevice(void* bytes, OPJ_SIZE_T count, void* user) {
    const qint64 read =
        static_cast<QIODevice*>(user)->read(static_cast<char*>(bytes), static_cast<qint64>(count));
    return read > 0 ? static_cast<OPJ_SIZE_T>(read) : static_cast<OPJ_SIZE_T>(-1);
}

OPJ_OFF_T SkipInDevice(OPJ_OFF_T count, void* user) {
    auto* device = static_cast<QIODevice*>(user);
    return count >= 0 && count <= device->size() - device->pos() &&
                   device->seek(device->pos() + count)
               ? count
               : -1;
}

OPJ_BOOL SeekInDevice(OPJ_OFF_T position, void* user) {
    auto* device = static_cast<QIODevice*>(user);
    return position >= 0 && position <= device->size() && device->seek(position);
}

OpenJpegStream OpenStream(QIODevice& device) {
    device.seek(0);
    OpenJpegStream stream(opj_stream_default_create(OPJ_TRUE));
    if (!stream) {
        throw std::bad_alloc();
    }
    opj_stream_set_user_data(stream.get(), &device, nullptr);
    opj_stream_set_user_data_length(stream.get(), static_cast<OPJ_UINT64>(device.size()));
    opj_stream_set_read_function(stream.get(), ReadFromDevice);
    opj_stream_set_skip_function(stream.get(), SkipInDevice);
    opj_stream_set_seek_function(stream.get(), SeekInDevice);
    return stream;
}

/// One channel of a decoded tile, as 8 bits.
class Channel {
 public:
    explicit Channel(const opj_image_comp_t& component)
        : component_(component), offset_(component.sgnd ? 1LL << (component.prec - 1) : 0) {}

    /// `x` and `y` count from the tile's corner.
    int At(qint64 x, qint64 y) const {
        const qint64 maximum = (1LL << component_.prec) - 1;
        const qint64 column = std::min<qint64>(x / component_.dx, component_.w - 1);
        const qint64 row = std::min<qint64>(y / component_.dy, component_.h - 1);
        const qint64 value =
            std::clamp<qint64>(component_.data[row * component_.w + column] + offset_, 0, maximum);
        return static_cast<int>((value * 255 + maximum / 2) / maximum);
    }

 private:
    const opj_image_comp_t& component_;
    qint64 offset_;
};

bool IsUsable(const opj_image_comp_t& component) {
    constexpr OPJ_UINT32 MostBits = 16;
    return component.data && component.w > 0 && component.h > 0 && component.dx > 0 &&
           component.dy > 0 && component.prec > 0 && component.prec <= MostBits;
}

/// Luminance and chroma to a colour (ITU-T T.871, section 7).
QRgb FromLuminanceAndChroma(int y, int cb, int cr, int alpha) {
    const auto channel = [y](double rest) { return qBound(0, qRound(y + rest), 255); };
    return qRgba(channel(1.402 * (cr - 128)),
                 channel(-0.344136 * (cb - 128) - 0.714136 * (cr - 128)),
                 channel(1.772 * (cb - 128)), alpha);
}

/// Puts a decoded tile into its place in `target`; false where it makes no sense.
bool PlaceTile(const opj_image_t& tile, QPoint origin, QImage& target) {
    const OPJ_UINT32 count = tile.numcomps;
    const auto usable = std::all_of(tile.comps, tile.comps + count, IsUsable);
    const QRect place =
        QRect(static_cast<int>(tile.x0) - origin.x(), static_cast<int>(tile.y0) - origin.y(),
              static_cast<int>(tile.x1 - tile.x0), static_cast<int>(tile.y1 - tile.y0));
    if (count < 1 || count > MostChannels || !usable || !target.rect().contains(place)) {
        return false;
    }
    const bool coloured = count >= 3;
    const bool hasAlpha = count % 2 == 0 && tile.comps[count - 1].alpha != 0;
    const Channel first(tile.comps[0]);
    const Channel second(tile.comps[coloured ? 1 : 0]);
    const Channel third(tile.comps[coloured ? 2 : 0]);
    const Channel last(tile.comps[count - 1]);
    for (int y = 0; y < place.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(target.scanLine(place.y() + y)) + place.x();
        for (int x = 0; x < place.width(); ++x) {
            const int alpha = hasAlpha ? last.At(x, y) : 255;
            const int a = first.At(x, y);
            const int b = second.At(x, y);
            const int c = third.At(x, y);
            row[x] = coloured && tile.color_space == OPJ_CLRSPC_SYCC
                         ? FromLuminanceAndChroma(a, b, c, alpha)
                         : qRgba(a, b, c, alpha);
        }
    }
    return true;
}

void DecodeTiles(const ReadTask& task, const Layout& layout, bool isFile, DecodedImage& decoded) {
    const OpenJpegStream stream = OpenStream(task.Device());
    const OpenJpegCodec codec(opj_create_decompress(isFile ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_image_t* header = nullptr;
    const bool begun = codec && opj_setup_decoder(codec.get(), &parameters) &&
                       opj_codec_set_threads(codec.get(), opj_get_num_cpus()) &&
                       opj_read_header(stream.get(), codec.get(), &header);
    const OpenJpegImage image(header);
    if (!begun || !image) {
        task.Fail(DamagedFileReason());
    }
    const QPoint origin(static_cast<int>(image->x0), static_cast<int>(image->y0));
    decoded.image = task.NewPicture(
        {static_cast<int>(layout.width), static_cast<int>(layout.height)}, QImage::Format_ARGB32);
    for (qint64 tile = 0; tile < layout.tiles; ++tile) {
        if (!opj_get_decoded_tile(codec.get(), stream.get(), image.get(),
                                  static_cast<OPJ_UINT32>(tile)) ||
            !PlaceTile(*image, origin, decoded.image)) {
            task.Fail(DamagedOrIncompleteFileReason());
        }
        // Known with the first tile. Inks, taken for light, would show a negative.
        if (image->color_space == OPJ_CLRSPC_CMYK || image->color_space == OPJ_CLRSPC_EYCC) {
            task.Fail(UnsupportedJpeg2000Reason());
        }
    }
    decoded.profile = QByteArray(reinterpret_cast<const char*>(image->icc_profile_buf),
                                 static_cast<qsizetype>(image->icc_profile_len));
    decoded.model = image->numcomps < 3 ? ColourModel::Grey : ColourModel::Rgb;
}

}  // namespace

DecodedImage DecodeJpeg2000(const ReadTask& task) try {
    QIODevice& device = task.Device();
    const bool isFile = !device.peek(4).startsWith(CodestreamSignature);
    DecodedImage decoded;
    decoded.metadata = ReadFileMetadata(device);
    const auto codestream = isFile ? FindJpeg2000Box(device, "jp2c", CodestreamSignature)
                                   : Jpeg2000Box{0, device.size()};
    if (!codestream) {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    const Layout layout = ReadLayout(device, codestream->position);
    RequireAllowed(task, layout, codestream->position);
    DecodeTiles(task, layout, isFile, decoded);
    return decoded;
} catch (const platform::OutOfBytes&) {
    task.Fail(DamagedFileReason());
}

}  // namespace kadrona::imaging
