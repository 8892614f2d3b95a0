#include "imaging/reading/cameras/RawCompleteness.h"

#include <QBuffer>
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "imaging/metadata/TiffFields.h"

namespace kadrona::imaging {

namespace {

enum Tag : quint16 {
    Compression = 0x0103,
    Photometry = 0x0106,
    StripOffsets = 0x0111,
    StripByteCounts = 0x0117,
    TileOffsets = 0x0144,
    TileByteCounts = 0x0145,
    SubDirectories = 0x014a,
    DngVersion = 0xc612,
};

using Directory = std::map<quint16, TiffField>;

// A picture has a handful of directories and some thousand tiles, whatever a hostile file says.
constexpr size_t MostDirectories = 64;
constexpr qint64 MostParts = 1'000'000;

class DngReader {
 public:
    explicit DngReader(QIODevice& device) : device_(device), tiff_(device) {}

    bool HasWholeData() {
        CollectDirectories();
        return std::ranges::all_of(directories_, [this](const Directory& directory) {
            return !IsOfSensor(directory) || IsWhole(directory);
        });
    }

 private:
    void CollectDirectories() {
        ReadDirectory(tiff_.First());
        if (directories_.empty() || !directories_.front().contains(DngVersion)) {
            directories_.clear();
            return;
        }
        size_t next = 0;
        while (next < directories_.size()) {  // which grows
            const TiffField links = FieldOf(directories_[next++], SubDirectories);
            for (quint32 k = 0; k < links.count && directories_.size() < MostDirectories; ++k) {
                ReadDirectory(tiff_.Number(links, k));
            }
        }
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

    bool IsWhole(const Directory& directory) try {
        constexpr quint32 LosslessJpeg = 7;
        constexpr quint32 LossyJpeg = 34892;
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
