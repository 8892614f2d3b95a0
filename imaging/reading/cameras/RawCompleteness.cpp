#include "imaging/reading/cameras/RawCompleteness.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

using platform::ByteReader;

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

/// Where the values of an entry lie.
struct Values {
    quint16 type = 0;
    quint32 count = 0;
    qsizetype position = 0;
};

using Directory = std::map<quint16, Values>;

// A picture has a handful of directories and some thousand tiles, whatever a hostile file says.
constexpr size_t MostDirectories = 64;
constexpr quint32 MostParts = 1'000'000;

bool IsOfUse(quint16 tag) {
    constexpr std::array Tags{Compression, Photometry,     StripOffsets,   StripByteCounts,
                              TileOffsets, TileByteCounts, SubDirectories, DngVersion};
    return std::ranges::find(Tags, tag) != Tags.end();
}

qint64 SizeOf(const Values& values) {
    constexpr quint16 Short = 3;
    return values.type == Short ? 2 : 4;
}

class DngReader {
 public:
    explicit DngReader(QByteArrayView file)
        : reader_(file, file.startsWith("MM") ? platform::ByteOrder::BigEndian
                                              : platform::ByteOrder::LittleEndian) {}

    bool HasWholeData() {
        CollectDirectories();
        return std::ranges::all_of(directories_, [this](const Directory& directory) {
            return !IsOfSensor(directory) || IsWhole(directory);
        });
    }

 private:
    void CollectDirectories() {
        reader_.Seek(4);
        ReadDirectory(reader_.Read<quint32>());
        if (directories_.empty() || !directories_.front().contains(DngVersion)) {
            directories_.clear();
            return;
        }
        size_t next = 0;
        while (next < directories_.size()) {  // which grows
            const Values links = Of(directories_[next++], SubDirectories);
            for (quint32 k = 0; k < links.count && directories_.size() < MostDirectories; ++k) {
                ReadDirectory(Number(links, k));
            }
        }
    }

    /// What lies outside the file is passed over: LibRaw finds no picture there either.
    void ReadDirectory(quint32 position) try {
        Directory directory;
        reader_.Seek(position);
        for (int left = reader_.Read<quint16>(); left > 0; --left) {
            const auto tag = reader_.Read<quint16>();
            const auto type = reader_.Read<quint16>();
            Values values{type, reader_.Read<quint32>(), reader_.Position()};
            const auto link = reader_.Read<quint32>();
            if (values.count * SizeOf(values) > 4) {
                values.position = link;
            }
            if (IsOfUse(tag)) {
                directory[tag] = values;
            }
        }
        directories_.push_back(std::move(directory));
    } catch (const platform::OutOfBytes&) {
        return;
    }

    /// Without values where the directory has no such entry.
    static Values Of(const Directory& directory, Tag tag) {
        const auto found = directory.find(tag);
        return found == directory.end() ? Values() : found->second;
    }

    quint32 Number(const Values& values, quint32 index) {
        reader_.Seek(values.position + index * SizeOf(values));
        return SizeOf(values) == 2 ? reader_.Read<quint16>() : reader_.Read<quint32>();
    }

    bool IsOfSensor(const Directory& directory) try {
        constexpr quint32 Mosaic = 32803;
        constexpr quint32 LinearRaw = 34892;
        const Values photometry = Of(directory, Photometry);
        const quint32 kind = photometry.count == 0 ? 0 : Number(photometry, 0);
        return kind == Mosaic || kind == LinearRaw;
    } catch (const platform::OutOfBytes&) {
        return false;
    }

    bool IsWhole(const Directory& directory) try {
        const bool tiled = directory.contains(TileOffsets);
        const Values offsets = Of(directory, tiled ? TileOffsets : StripOffsets);
        const Values sizes = Of(directory, tiled ? TileByteCounts : StripByteCounts);
        const bool compressed = IsJpegCoded(directory);
        if (offsets.count > MostParts) {
            return false;
        }
        for (quint32 i = 0; i < offsets.count; ++i) {
            const quint32 size = i < sizes.count ? Number(sizes, i) : 0;
            reader_.Seek(Number(offsets, i));
            constexpr QByteArrayView Begin("\xff\xd8");
            const auto part = reader_.Take(std::max<qint64>(size, Begin.size()));
            if (compressed && !part.startsWith(Begin)) {
                return false;
            }
        }
        return true;
    } catch (const platform::OutOfBytes&) {
        return false;
    }

    bool IsJpegCoded(const Directory& directory) {
        constexpr quint32 LosslessJpeg = 7;
        constexpr quint32 LossyJpeg = 34892;
        const Values compression = Of(directory, Compression);
        const quint32 kind = compression.count == 0 ? 0 : Number(compression, 0);
        return kind == LosslessJpeg || kind == LossyJpeg;
    }

    ByteReader reader_;
    std::vector<Directory> directories_;
};

}  // namespace

bool HasWholeRawData(QByteArrayView file) try {
    const bool isTiff =
        file.startsWith(QByteArrayView("II*\0", 4)) || file.startsWith(QByteArrayView("MM\0*", 4));
    return !isTiff || DngReader(file).HasWholeData();
} catch (const platform::OutOfBytes&) {
    return true;
}

}  // namespace kadrona::imaging
