#include "imaging/reading/TiffReader.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "imaging/codec/Release.h"
#include "imaging/metadata/TiffFields.h"
#include "imaging/pixels/LaidOverWhite.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/reading/JpegHeader.h"
#include "imaging/reading/PluginReader.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using TiffFile = std::unique_ptr<TIFF, Release<TIFFClose>>;

tmsize_t ReadTiffBytes(thandle_t device, void* bytes, tmsize_t count) {
    return static_cast<QIODevice*>(device)->read(static_cast<char*>(bytes), count);
}

toff_t SeekInTiff(thandle_t handle, toff_t offset, int whence) {
    auto* device = static_cast<QIODevice*>(handle);
    const qint64 start = whence == SEEK_CUR   ? device->pos()
                         : whence == SEEK_END ? device->size()
                                              : 0;
    const auto position = start + static_cast<qint64>(offset);
    // Behind the end there is nothing to read, and a seek would fail.
    return position >= 0 && device->seek(std::min(position, device->size()))
               ? static_cast<toff_t>(position)
               : static_cast<toff_t>(-1);
}

/// Null where it is no such file. Nothing that it claims takes more memory at once than a picture
/// may take beside its pixels.
TiffFile OpenTiff(QIODevice& device) {
    const auto saysNothing = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), MostBytesBeside);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), saysNothing, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), saysNothing, nullptr);
    return TiffFile(TIFFClientOpenExt(
        "", "rm", &device, ReadTiffBytes, [](thandle_t, void*, tmsize_t) { return tmsize_t{-1}; },
        SeekInTiff, [](thandle_t) { return 0; },
        [](thandle_t handle) {
            return static_cast<toff_t>(static_cast<QIODevice*>(handle)->size());
        },
        nullptr, nullptr, options.get()));
}

/// What the values of the first directory take, which libtiff reads whatever they are; of both
/// kinds of files, with offsets of 32 and of 64 bits. 0 where the file ends before.
qint64 ValueBytes(QIODevice& device) try {
    const auto at = [&](quint64 position, qint64 count) {
        const bool isThere =
            std::cmp_less(position, device.size()) && device.seek(static_cast<qint64>(position));
        return isThere ? device.read(count) : QByteArray();
    };
    const QByteArray header = at(0, 16);
    const auto order =
        header.startsWith('M') ? platform::ByteOrder::BigEndian : platform::ByteOrder::LittleEndian;
    const auto number = [order](QByteArrayView bytes, qint64 from, bool isLarge) -> quint64 {
        platform::ByteReader reader(bytes, order);
        reader.Seek(from);
        return isLarge ? reader.Read<quint64>() : reader.Read<quint32>();
    };
    const bool isLarge = header.size() > 3 && (header.at(2) == 43 || header.at(3) == 43);
    const quint64 directory = number(header, isLarge ? 8 : 4, isLarge);
    const QByteArray all = at(directory + (isLarge ? 8 : 2), qint64{0xffff} * 20);
    const QByteArray begin = at(directory, 8);
    platform::ByteReader countReader(begin, order);
    const quint64 count = isLarge ? number(begin, 0, true) : countReader.Read<quint16>();
    qint64 bytes = 0;
    const qint64 entrySize = isLarge ? 20 : 12;
    for (qint64 entry = 0; std::cmp_less(entry, count); ++entry) {
        platform::ByteReader reader(all, order);
        reader.Seek(entry * entrySize + 2);
        const auto type = reader.Read<quint16>();
        const quint64 values = number(all, entry * entrySize + 4, isLarge);
        const auto size = static_cast<quint64>(TiffValueSize(type));
        const auto most = static_cast<quint64>(device.size());
        bytes += static_cast<qint64>(std::min(std::min(values, most) * size, most));
    }
    return bytes;
} catch (const platform::OutOfBytes&) {
    return 0;
}

template <typename Value>
Value FieldOf(TIFF* tiff, quint32 tag) {
    Value value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

/// libtiff knows a dozen further ways, which no camera and no photo editor writes photos in, and
/// whose decoders hardly anybody keeps: fax, and those of single scanners and laboratories.
void RequireUsualPacking(TIFF* tiff, const ReadTask& task) {
    constexpr std::array Usual{COMPRESSION_NONE,     COMPRESSION_LZW,
                               COMPRESSION_JPEG,     COMPRESSION_ADOBE_DEFLATE,
                               COMPRESSION_PACKBITS, COMPRESSION_DEFLATE};
    const auto packing = FieldOf<quint16>(tiff, TIFFTAG_COMPRESSION);
    if (std::ranges::find(Usual, packing) == Usual.end()) {
        task.Fail(
            u"Sie ist auf eine Art gepackt (TIFF-Kompression %1), die für Fotos nicht üblich "
            u"ist; speichern Sie sie mit LZW, ZIP oder JPEG."_s.arg(packing));
    }
}

/// How the samples of a pixel lie in the file.
struct TiffLayout {
    explicit TiffLayout(TIFF* tiff)
        : width(FieldOf<quint32>(tiff, TIFFTAG_IMAGEWIDTH)),
          height(FieldOf<quint32>(tiff, TIFFTAG_IMAGELENGTH)),
          bits(FieldOf<quint16>(tiff, TIFFTAG_BITSPERSAMPLE)),
          samples(FieldOf<quint16>(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          photometry(FieldOf<quint16>(tiff, TIFFTAG_PHOTOMETRIC)),
          areNumbers(FieldOf<quint16>(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_UINT),
          areTogether(FieldOf<quint16>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG),
          isTiled(TIFFIsTiled(tiff) != 0) {
        quint16 count = 0;
        quint16* kinds = nullptr;
        isPremultiplied = TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) && count > 0 &&
                          kinds[0] == EXTRASAMPLE_ASSOCALPHA;
    }

    qint64 Pixels() const { return qint64{width} * height; }
    bool IsGrey() const {
        return photometry == PHOTOMETRIC_MINISBLACK || photometry == PHOTOMETRIC_MINISWHITE;
    }
    int Colours() const { return IsGrey() ? 1 : 3; }
    bool HasAlpha() const { return samples > Colours(); }
    /// True for rows of 16 bits a channel, as ReadRows takes them.
    bool IsDeep() const {
        return bits == 16 && areNumbers && areTogether && !isTiled &&
               (IsGrey() || photometry == PHOTOMETRIC_RGB) && samples >= Colours() &&
               samples <= Colours() + 1;
    }

    quint32 width;
    quint32 height;
    quint16 bits;
    quint16 samples;
    quint16 photometry;
    bool areNumbers;
    bool areTogether;
    bool isTiled;
    bool isPremultiplied = false;
};

/// Of one row: to red, green, blue and alpha.
void Spread(const std::vector<quint16>& samples, const TiffLayout& layout, quint16* pixels) {
    constexpr quint16 Opaque = 0xffff;
    const quint16 flip = layout.photometry == PHOTOMETRIC_MINISWHITE ? 0xffff : 0;
    const quint16* in = samples.data();
    for (quint32 x = 0; x < layout.width; ++x, in += layout.samples, pixels += 4) {
        for (int channel = 0; channel < 3; ++channel) {
            pixels[channel] = in[layout.IsGrey() ? 0 : channel] ^ flip;
        }
        pixels[3] = layout.HasAlpha() ? in[layout.Colours()] : Opaque;
    }
}

/// A few million pixels at a time, so that only those are in memory with 16 bits a channel.
QImage ReadRows(TIFF* tiff, const TiffLayout& layout, const DecodedImage& decoded,
                const ReadTask& task) {
    constexpr int BandPixels = 2'000'000;
    const auto width = static_cast<int>(layout.width);
    const auto height = static_cast<int>(layout.height);
    const int bandHeight = std::clamp(BandPixels / width, 1, height);
    QImage result = NewImage({width, height}, QImage::Format_RGB32);
    std::vector<quint16> samples(size_t{layout.width} * layout.samples);
    for (int top = 0; top < height; top += bandHeight) {
        const int rows = std::min(bandHeight, height - top);
        QImage band =
            NewImage({width, rows}, layout.isPremultiplied ? QImage::Format_RGBA64_Premultiplied
                                                           : QImage::Format_RGBA64);
        for (int y = 0; y < rows; ++y) {
            if (TIFFReadScanline(tiff, samples.data(), static_cast<quint32>(top + y)) < 0) {
                task.Fail(DamagedOrIncompleteFileReason());
            }
            Spread(samples, layout, reinterpret_cast<quint16*>(band.scanLine(y)));
        }
        band = RequireAllocated(std::move(band).convertToFormat(QImage::Format_RGBA64));
        ConvertToSrgb(band, decoded.model, decoded.profile);
        band = LaidOverWhite(std::move(band));
        for (int y = 0; y < rows; ++y) {
            std::memcpy(result.scanLine(top + y), band.constScanLine(y), size_t{layout.width} * 4);
        }
    }
    return result;
}

QByteArray ProfileOf(TIFF* tiff) {
    quint32 size = 0;
    const char* bytes = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &bytes)) {
        return {};
    }
    return {bytes, qsizetype{size}};
}

/// The largest strip or tile as it lies in the file, which is in memory as a whole, and the table
/// of all. Throws a ReadError where together they are far more than the file: each is read anew.
qint64 PackedBytes(TIFF* tiff, const ReadTask& task) {
    constexpr qint64 BytesOfEntry = 16;
    // Half a second of reading, for writers that say what the pixels take unpacked.
    constexpr qint64 MostBesideFile = 500'000'000;
    const auto file = static_cast<quint64>(task.Device().size());
    const quint32 count = TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    task.RequireMemoryBeside(BytesOfEntry * count);
    qint64 most = 0;
    qint64 all = 0;
    for (quint32 i = 0; i < count; ++i) {
        const quint64 said = TIFFGetStrileByteCount(tiff, i);
        const auto bytes = static_cast<qint64>(std::min(said, file));
        most = std::max(most, bytes);
        all += bytes;
    }
    if (all > 2 * task.Device().size() + MostBesideFile) {
        task.Fail(DamagedFileReason());
    }
    return most + BytesOfEntry * count;
}

/// Throws a ReadError where a strip or tile is a JPEG larger than its place, as libtiff lets the
/// last be, or one of several scans: its coefficients may take any memory then, and its scans any
/// time.
void RequireSoundJpegs(TIFF* tiff, const ReadTask& task) {
    constexpr qint64 RowsOfAnyBlock = 64;
    constexpr qint64 BytesOfAllHeaders = 256'000'000;
    const TiffLayout layout(tiff);
    const auto rows = std::min<qint64>(FieldOf<quint32>(tiff, TIFFTAG_ROWSPERSTRIP),
                                       layout.height + RowsOfAnyBlock);
    const qint64 width = layout.isTiled ? FieldOf<quint32>(tiff, TIFFTAG_TILEWIDTH) : layout.width;
    const qint64 height = layout.isTiled ? FieldOf<quint32>(tiff, TIFFTAG_TILELENGTH) : rows;
    const quint32 count = layout.isTiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    constexpr quint32 MostPlaces = 100'000;  // each takes ten microseconds
    if (count > MostPlaces) {
        task.Fail(u"Diese Art von TIFF-Datei wird nicht unterstützt."_s);
    }
    std::vector<quint64> places(count);
    for (quint32 i = 0; i < count; ++i) {
        places[i] = TIFFGetStrileOffset(tiff, i);
    }
    std::ranges::sort(places);
    places.erase(std::unique(places.begin(), places.end()), places.end());
    const qint64 most =
        std::clamp<qint64>(BytesOfAllHeaders / std::max<quint32>(count, 1), 1 << 16, 1 << 24);
    for (const quint64 place : places) {
        if (std::cmp_greater_equal(place, task.Device().size())) {
            continue;  // there is none
        }
        constexpr qint64 UsualHeader = 1200;
        std::optional<JpegHeader> header;
        for (const qint64 bytes : {UsualHeader, most}) {
            if (!header) {
                task.Device().seek(static_cast<qint64>(place));
                header = ReadJpegHeader(task.Device().read(bytes));
            }
        }
        if (!header) {
            task.Fail(DamagedOrIncompleteFileReason());
        }
        if (header->size.width() > width || header->size.height() > height || !header->hasOneScan) {
            task.Fail(u"Diese Art von TIFF-Datei wird nicht unterstützt."_s);
        }
    }
}

/// What the plug-in takes beside the result: a strip or tile, of each plane where they lie apart,
/// and pixels of more bits.
qint64 PluginBytesBeside(TIFF* tiff, const TiffLayout& layout) {
    const bool keepsBits = layout.IsGrey() || layout.photometry == PHOTOMETRIC_RGB;
    const int perPixel = layout.bits <= 8 || !keepsBits ? 1 : layout.bits <= 16 ? 12 : 20;
    const qint64 place = layout.isTiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    return place * (layout.areTogether ? 1 : layout.samples) + layout.Pixels() * perPixel;
}

}  // namespace

bool IsTiff(QByteArrayView start) {
    return start.startsWith(QByteArrayView("II*\0", 4)) ||
           start.startsWith(QByteArrayView("MM\0*", 4)) ||
           start.startsWith(QByteArrayView("II+\0", 4)) ||
           start.startsWith(QByteArrayView("MM\0+", 4));
}

DecodedImage ReadTiff(const ReadTask& task) {
    DecodedImage decoded;
    decoded.metadata = ReadFileMetadata(task.Device());
    // libtiff reads all values as it opens the file, and a profile is copied.
    const qint64 values = 2 * ValueBytes(task.Device());
    task.RequireMemoryBeside(values);
    task.Device().seek(0);
    TiffFile tiff = OpenTiff(task.Device());
    if (!tiff) {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    RequireUsualPacking(tiff.get(), task);
    const TiffLayout layout(tiff.get());
    task.RequireAllowedSize(layout.width, layout.height);
    const qint64 packed = PackedBytes(tiff.get(), task);
    task.RequireMemoryBeside(packed + values);
    if (FieldOf<quint16>(tiff.get(), TIFFTAG_COMPRESSION) == COMPRESSION_JPEG) {
        RequireSoundJpegs(tiff.get(), task);
    }
    if (!layout.IsDeep()) {
        task.RequireMemoryBeside(packed + PluginBytesBeside(tiff.get(), layout) + values);
        tiff.reset();
        task.Device().seek(0);
        return ReadByPlugin(task, "tiff");
    }
    decoded.profile = ProfileOf(tiff.get());
    decoded.model = layout.IsGrey() ? ColourModel::Grey : ColourModel::Rgb;
    decoded.image = ReadRows(tiff.get(), layout, decoded, task);
    decoded.profile.clear();  // it is done
    return decoded;
}

}  // namespace kadrona::imaging
