#include "imaging/reading/cameras/RawCompleteness.h"

#include <QBuffer>
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "imaging/metadata/TiffFields.h"
#include "imaging/reading/JpegHeader.h"

namespace kadrona::imaging {

namespace {

enum Tag : quint16 {
    Width = 0x0100,
    Height = 0x0101,
    Compression = 0x0103,
    Photometry = 0x0106,
    StripOffsets = 0x0111,
    StripByteCounts = 0x0117,
    TileWidth = 0x0142,
    TileHeight = 0x0143,
    TileOffsets = 0x0144,
    TileByteCounts = 0x0145,
    SubDirectories = 0x014a,
    DngVersion = 0xc612,
};

using Directory = std::map<quint16, TiffField>;

// A picture has a handful of directories and some thousand tiles, whatever a hostile file says.
constexpr size_t MostDirectories = 64;
constexpr qint64 MostParts = 1'000'000;

constexpr quint32 LosslessJpeg = 7;
constexpr quint32 LossyJpeg = 34892;

class DngReader {
 public:
    explicit DngReader(QIODevice& device)
        : device_(device), tiff_(device, TiffFields::Kind::AnyMakers) {}

    bool HasWholeData() {
        CollectDirectories();
        if (directories_.size() >= MostDirectories) {
            return false;  // there may be more, with anything in them
        }
        const bool isDng = !directories_.empty() && directories_.front().contains(DngVersion);
        return std::ranges::all_of(directories_, [this, isDng](const Directory& directory) {
            return (!isDng || !IsOfSensor(directory) || IsWhole(directory)) &&
                   (!IsLossy(directory) || HasSoundJpegs(directory));
        });
    }

 private:
    void CollectDirectories() {
        for (quint32 place = tiff_.First(); place != 0 && directories_.size() < MostDirectories;
             place = FollowingOf(place)) {
            ReadDirectory(place);
        }
        size_t next = 0;
        while (next < directories_.size()) {  // which grows
            ReadSubDirectories(FieldOf(directories_[next++], SubDirectories));
        }
    }

    void ReadSubDirectories(const TiffField& links) try {
        for (quint32 k = 0; k < links.count && directories_.size() < MostDirectories; ++k) {
            ReadDirectory(tiff_.Number(links, k));
        }
    } catch (const platform::OutOfBytes&) {
        return;
    }

    /// What lies outside the file is passed over: LibRaw finds no picture there either.
    void ReadDirectory(quint32 position) try {
        Directory directory;
        for (const TiffField& field : tiff_.Directory(position)) {
            directory[field.tag] = field;
        }
        directories_.push_back(std::move(directory));
    } catch (const platform::OutOfBytes&) {
        return;
    }

    quint32 FollowingOf(quint32 position) const try {
        return tiff_.Following(position);
    } catch (const platform::OutOfBytes&) {
        return 0;
    }

    /// Without values where the directory has no such field.
    static TiffField FieldOf(const Directory& directory, Tag tag) {
        const auto found = directory.find(tag);
        return found == directory.end() ? TiffField() : found->second;
    }

    /// The number of a field that has one; 0 without.
    quint32 KindIn(const Directory& directory, Tag tag) const {
        const TiffField kind = FieldOf(directory, tag);
        return kind.count == 0 ? 0 : tiff_.Number(kind);
    }

    bool IsOfSensor(const Directory& directory) const try {
        constexpr quint32 Mosaic = 32803;
        constexpr quint32 LinearRaw = 34892;
        const quint32 kind = KindIn(directory, Photometry);
        return kind == Mosaic || kind == LinearRaw;
    } catch (const platform::OutOfBytes&) {
        return false;
    }

    bool IsLossy(const Directory& directory) const try {
        return KindIn(directory, Compression) == LossyJpeg;
    } catch (const platform::OutOfBytes&) {
        return true;
    }

    bool IsWhole(const Directory& directory) try {
        constexpr QByteArrayView JpegBegin("\xff\xd8");
        const bool tiled = directory.contains(TileOffsets);
        const TiffField offsets = FieldOf(directory, tiled ? TileOffsets : StripOffsets);
        const TiffField sizes = FieldOf(directory, tiled ? TileByteCounts : StripByteCounts);
        const quint32 coding = KindIn(directory, Compression);
        const bool isJpeg = coding == LosslessJpeg || coding == LossyJpeg;
        parts_ += offsets.count;
        if (parts_ > MostParts) {
            return false;
        }
        for (quint32 i = 0; i < offsets.count; ++i) {
            const qint64 size = i < sizes.count ? tiff_.Number(sizes, i) : 0;
            const qint64 position = tiff_.Number(offsets, i);
            const QByteArray begin = platform::BytesAt(device_, position, JpegBegin.size());
            if (position + size > device_.size() || (isJpeg && begin != JpegBegin)) {
                return false;
            }
        }
        return true;
    } catch (const platform::OutOfBytes&) {
        return false;
    }

    /// LibRaw hands each tile, or the only strip, to libjpeg, whatever size and scans its header
    /// says.
    bool HasSoundJpegs(const Directory& directory) try {
        constexpr qint64 HeaderBytes = 1 << 16;
        const bool tiled = directory.contains(TileOffsets);
        const qint64 pictureWidth = KindIn(directory, Width);
        const qint64 pictureHeight = KindIn(directory, Height);
        const qint64 width = tiled ? KindIn(directory, TileWidth) : pictureWidth;
        const qint64 height = tiled ? KindIn(directory, TileHeight) : pictureHeight;
        const TiffField offsets = FieldOf(directory, tiled ? TileOffsets : StripOffsets);
        if (width == 0 || height == 0) {
            return false;
        }
        const qint64 across = (pictureWidth + width - 1) / width;
        if (offsets.count < across * ((pictureHeight + height - 1) / height)) {
            return false;  // it would read on behind the table
        }
        for (quint32 i = 0; i < offsets.count; ++i) {
            const qint64 place = tiff_.Number(offsets, i);
            device_.seek(place);
            const auto header = ReadJpegHeader(device_.read(HeaderBytes));
            if (!header || !header->hasOneScan || header->size.width() > width ||
                header->size.height() > height) {
                return false;
            }
        }
        return true;
    } catch (const platform::OutOfBytes&) {
        return false;
    }

    QIODevice& device_;
    TiffFields tiff_;
    std::vector<Directory> directories_;
    /// Of all directories so far.
    qint64 parts_ = 0;
};

}  // namespace

bool HasWholeRawData(QByteArrayView file) try {
    QByteArray bytes = QByteArray::fromRawData(file.data(), file.size());
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return DngReader(buffer).HasWholeData();
} catch (const platform::OutOfBytes&) {
    return true;  // no TIFF file
}

}  // namespace kadrona::imaging
