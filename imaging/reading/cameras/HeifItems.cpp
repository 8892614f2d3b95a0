#include "imaging/reading/cameras/HeifItems.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>

#include "imaging/reading/cameras/CodedPixels.h"
#include "imaging/reading/cameras/HeifBoxes.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using platform::ByteReader;

/// The work that the items of one file make.
class HeifItems {
 public:
    explicit HeifItems(QByteArrayView file) : boxes_(file) {}

    /// The library makes two copies of the boxes as it opens the file, and one of each item that is
    /// no picture.
    void RequireBoundedBytes(const ReadTask& task) const {
        qint64 all = 0;
        qint64 besidePictures = 0;
        qint64 inParts = 0;
        for (const HeifItem& item : boxes_.items) {
            RequireNone(item.isPacked);  // to any size
            qint64 bytes = 0;
            for (const HeifExtent& extent : item.extents) {
                bytes += boxes_.BytesOf(extent).size();
            }
            all += bytes;
            besidePictures += IsPicture(item) ? 0 : bytes;
            inParts = std::max(inParts, item.extents.size() > 1 ? bytes : 0);
        }
        // No byte stands for two items; twice the file leaves room for odd ones.
        RequireNone(all > 2 * boxes_.file.size());
        task.RequireMemoryBeside(boxes_.file.size() + 2 * boxes_.bytes + besidePictures + inParts);
    }

    /// Throws where the primary item takes more than its size allows.
    HeifWork RequireBoundedWork() {
        constexpr qint64 LargestPicture = 200'000'000;
        constexpr qint64 AsManyAsItsOwn = 4;  // with alpha, depths and edges that are filled up
        constexpr qint64 OfSmallOnes = 20'000'000;
        mostPixels_ =
            AsManyAsItsOwn * std::min(SaidPixels(boxes_.primary), LargestPicture) + OfSmallOnes;
        Follow(boxes_.primary, 0);
        return work_;
    }

 private:
    /// So many that no product of two overflows.
    static constexpr qint64 Countless = 1LL << 31;

    static bool IsPicture(const HeifItem& item) {
        constexpr std::array Kinds{"hvc1", "av01", "grid", "iovl", "iden"};
        return std::ranges::find(Kinds, item.type) != Kinds.end();
    }

    qint64 CountOf(const HeifItem& item, std::initializer_list<QByteArrayView> types) const {
        return std::ranges::count_if(item.properties, [&](size_t index) {
            return std::ranges::find(types, boxes_.TypeOfProperty(index)) != types.end();
        });
    }

    /// Of each of three kinds of turns a picture has one; every one is another walk over all its
    /// pixels. Of several configurations the library takes one.
    void RequireFewProperties(const HeifItem& item) const {
        constexpr qint64 MostTurns = 6;
        RequireNone(CountOf(item, {"irot", "imir", "clap"}) > MostTurns ||
                    CountOf(item, {"hvcC", "av1C"}) > 1);
    }

    qint64 SaidPixels(quint32 id) {
        const QByteArrayView size = boxes_.PropertyOf(boxes_.items[id], "ispe");
        if (size.isNull()) {
            return 0;
        }
        ByteReader reader(size, platform::ByteOrder::BigEndian);
        reader.Skip(HeifBoxes::VersionBytes);
        const quint64 width = reader.Read<quint32>();
        return static_cast<qint64>(
            std::min<quint64>(width * reader.Read<quint32>(), std::numeric_limits<qint64>::max()));
    }

    QByteArray BytesOf(const HeifItem& item) const {
        QByteArray bytes;
        if (item.extents.size() == 1) {
            const QByteArrayView only = boxes_.BytesOf(item.extents[0]);
            return QByteArray::fromRawData(only.data(), only.size());
        }
        for (const HeifExtent& extent : item.extents) {
            bytes.append(boxes_.BytesOf(extent));
        }
        return bytes;
    }

    /// What the library reserves for a picture that others are put into (ISO/IEC 23008-12, 6.6.2).
    static qint64 CanvasPixels(const HeifItem& item, QByteArrayView bytes) {
        constexpr int ColoursOfBackground = 8;
        constexpr int RowsAndColumns = 2;
        ByteReader reader(bytes, platform::ByteOrder::BigEndian);
        reader.Skip(1);
        const bool isLong = (reader.Read<quint8>() & 1) != 0;
        reader.Skip(item.type == "iovl" ? ColoursOfBackground : RowsAndColumns);
        const auto side = [&] {
            return qint64{isLong ? reader.Read<quint32>() : reader.Read<quint16>()};
        };
        const qint64 width = std::min(side(), Countless);
        return width * std::min(side(), Countless);
    }

    qint64 CodedPixelsOf(const HeifItem& item) {
        const QByteArray bytes = BytesOf(item);
        if (item.type == "grid" || item.type == "iovl") {
            return CanvasPixels(item, bytes);
        }
        if (item.type != "hvc1" && item.type != "av01") {
            return 0;
        }
        const bool isHevc = item.type == "hvc1";
        const QByteArrayView configuration = boxes_.PropertyOf(item, isHevc ? "hvcC" : "av1C");
        const CodedPictures found = isHevc ? CodedHevcPictures(configuration, bytes)
                                           : CodedAv1Pictures(configuration, bytes);
        // A codec keeps each piece as an object, however small it is.
        constexpr qint64 MostUnits = 100'000;
        units_ += found.units;
        RequireNone(units_ > MostUnits);
        work_.bytes = std::max<qint64>(work_.bytes, bytes.size());
        work_.hasAv1 = work_.hasAv1 || !isHevc;
        work_.isDeep = work_.isDeep || found.isDeep;
        work_.chroma = std::max(work_.chroma, found.chroma);
        return std::min(found.pixels, Countless) * std::clamp<qint64>(found.pictures, 1, Countless);
    }

    /// The item and all that it is made of, each as often as it is decoded. Returns the pixels of
    /// the item itself.
    qint64 Follow(quint32 id, int depth) {
        constexpr int Deepest = 6;
        constexpr int MostDecoded = 10'000;
        constexpr qint64 TilesAtOnce = 4;
        RequireNone(depth > Deepest || ++decoded_ > MostDecoded);
        const HeifItem item = boxes_.items[id];
        // The library knows no other kinds of pictures, or what they take is not looked at.
        RequireNone(!item.type.isNull() && !IsPicture(item));
        auto known = coded_.find(id);
        if (known == coded_.end()) {
            RequireFewProperties(item);
            known = coded_.insert(id, CodedPixelsOf(item));
        }
        const qint64 pixels = *known;
        pixels_ += pixels;
        RequireNone(pixels > mostPixels_ || pixels_ > mostPixels_);
        qint64 largestPart = 0;
        for (const quint32 part : item.parts) {
            largestPart = std::max(largestPart, Follow(part, depth + 1));
        }
        work_.pixels =
            std::max({work_.pixels, pixels,
                      item.type == "grid"
                          ? std::min<qint64>(TilesAtOnce, static_cast<qint64>(item.parts.size())) *
                                largestPart
                          : 0});
        return pixels;
    }

    HeifBoxes boxes_;
    HeifWork work_;
    qint64 units_ = 0;
    QHash<quint32, qint64> coded_;
    int decoded_ = 0;
    qint64 pixels_ = 0;
    qint64 mostPixels_ = 0;
};

}  // namespace

HeifWork RequireSoundItems(QByteArrayView file, const ReadTask& task) try {
    HeifItems items(file);
    items.RequireBoundedBytes(task);
    return items.RequireBoundedWork();
} catch (const platform::OutOfBytes&) {
    task.Fail(DamagedOrIncompleteFileReason());
} catch (const TooManyItems&) {
    task.Fail(u"Diese Art von HEIF-Datei wird nicht unterstützt."_s);
}

}  // namespace kadrona::imaging
