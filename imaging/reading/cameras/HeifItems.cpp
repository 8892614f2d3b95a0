#include "imaging/reading/cameras/HeifItems.h"

#include <QHash>
#include <algorithm>
#include <functional>
#include <limits>
#include <vector>

#include "imaging/reading/cameras/CodedPixels.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using platform::ByteReader;
using UseOfBox = std::function<void(QByteArrayView type, QByteArrayView content)>;

ByteReader BoxContent(QByteArrayView content) {
    return ByteReader(content, platform::ByteOrder::BigEndian);
}

/// Hands out the boxes in `bytes` one after the other (ISO/IEC 14496-12, 4.2). One that reaches
/// beyond them ends with them.
void ForEachBox(QByteArrayView bytes, const UseOfBox& use) {
    constexpr int ShortestBox = 8;
    ByteReader reader = BoxContent(bytes);
    while (reader.Remaining() >= ShortestBox) {
        qint64 length = reader.Read<quint32>();
        const QByteArrayView type = reader.Take(4);
        length = length == 1   ? reader.Read<qint64>() - 16
                 : length == 0 ? reader.Remaining()
                               : length - ShortestBox;
        use(type, reader.Take(std::min<qint64>(length, reader.Remaining())));
    }
}

/// Thrown where a file has more of something than any picture needs.
class TooManyItems : public std::exception {};

/// The items of one file, what they are made of, and the work that they make.
class HeifItems {
 public:
    explicit HeifItems(QByteArrayView file) : file_(file) {
        ForEachBox(file, [this](QByteArrayView type, QByteArrayView content) {
            if (type == "meta") {
                // Of what stands there the library makes two copies.
                constexpr qsizetype MostBytes = 50'000'000;
                RequireNone(isRead_ || content.size() > MostBytes);
                isRead_ = true;
                ByteReader(content).Skip(VersionBytes);
                ForEachBox(content.sliced(VersionBytes),
                           [this](auto inner, auto bytes) { ReadMetaBox(inner, bytes); });
            }
        });
    }

    /// Throws where the primary item takes more than its size allows.
    void RequireBoundedWork() {
        constexpr qint64 LargestPicture = 200'000'000;
        constexpr qint64 AsManyAsItsOwn = 4;  // with alpha, depths and edges that are filled up
        constexpr qint64 OfSmallOnes = 20'000'000;
        mostPixels_ = AsManyAsItsOwn * std::min(SaidPixels(primary_), LargestPicture) + OfSmallOnes;
        Follow(primary_, 0);
    }

 private:
    static constexpr int VersionBytes = 4;
    static constexpr size_t MostNumbers = 100'000;

    struct Extent {
        int method = 0;  ///< 0 in the file, 1 in the box "idat"
        quint64 begin = 0;
        quint64 length = 0;
    };
    struct Property {
        QByteArrayView type;
        QByteArrayView content;
    };
    struct Item {
        std::vector<quint32> parts;  ///< pictures that are decoded for this one
        std::vector<size_t> properties;
        std::vector<Extent> extents;
    };

    static void RequireNone(bool isMore) {
        if (isMore) {
            throw TooManyItems();
        }
    }
    void CountNumbers(size_t count) {
        numbers_ += count;
        RequireNone(numbers_ > MostNumbers);
    }
    static quint32 ReadNumber(ByteReader& reader, bool isLong) {
        return isLong ? reader.Read<quint32>() : reader.Read<quint16>();
    }

    void ReadMetaBox(QByteArrayView type, QByteArrayView content) {
        ByteReader reader = BoxContent(content);
        if (type == "idat") {
            RequireNone(!inside_.isNull());  // the library takes another one
            inside_ = content;
        } else if (type == "pitm") {
            const int version = reader.Read<quint8>();
            reader.Skip(3);
            primary_ = primary_ == 0 ? ReadNumber(reader, version > 0) : primary_;
        } else if (type == "iinf") {
            constexpr qsizetype MostItems = 4000;  // the library looks for each among all
            RequireNone(content.count("infe") > MostItems);
        } else if (type == "iref") {
            ReadReferences(content);
        } else if (type == "iloc") {
            ReadLocations(reader);
        } else if (type == "iprp") {
            ForEachBox(content, [this](QByteArrayView inner, QByteArrayView bytes) {
                if (inner == "ipco") {
                    RequireNone(!properties_.empty());
                    ForEachBox(bytes, [this](QByteArrayView name, QByteArrayView said) {
                        CountNumbers(1);
                        properties_.push_back({name, said});
                    });
                } else if (inner == "ipma") {
                    ReadAssociations(BoxContent(bytes));
                }
            });
        }
    }

    void ReadReferences(QByteArrayView content) {
        const bool isLong = BoxContent(content).Read<quint8>() > 0;
        ByteReader(content).Skip(VersionBytes);
        ForEachBox(content.sliced(VersionBytes), [&](QByteArrayView type, QByteArrayView bytes) {
            ByteReader reader = BoxContent(bytes);
            const quint32 from = ReadNumber(reader, isLong);
            const size_t count = reader.Read<quint16>();
            CountNumbers(count);
            for (size_t i = 0; i < count; ++i) {
                const quint32 to = ReadNumber(reader, isLong);
                if (type == "dimg") {
                    items_[from].parts.push_back(to);
                } else if (type == "auxl") {
                    items_[to].parts.push_back(from);
                }
            }
        });
    }

    void ReadAssociations(ByteReader reader) {
        const int version = reader.Read<quint8>();
        reader.Skip(2);
        const bool isLong = (reader.Read<quint8>() & 1) != 0;
        for (auto entries = reader.Read<quint32>(); entries > 0; --entries) {
            Item& item = items_[ReadNumber(reader, version > 0)];
            const size_t count = reader.Read<quint8>();
            CountNumbers(count + 1);
            for (size_t i = 0; i < count; ++i) {
                const size_t index =
                    isLong ? reader.Read<quint16>() & 0x7fff : reader.Read<quint8>() & 0x7f;
                item.properties.push_back(index);
            }
        }
    }

    static quint64 ReadSized(ByteReader& reader, int bytes) {
        quint64 value = 0;
        for (; bytes > 0; --bytes) {
            value = value << 8 | reader.Read<quint8>();
        }
        return value;
    }

    /// ISO/IEC 14496-12, 8.11.3.
    void ReadLocations(ByteReader reader) {
        const int version = reader.Read<quint8>();
        reader.Skip(3);
        const auto sizes = reader.Read<quint16>();
        const int indexBytes = version > 0 ? sizes & 15 : 0;
        for (auto left = ReadNumber(reader, version > 1); left > 0; --left) {
            Item& item = items_[ReadNumber(reader, version > 1)];
            const int method = version > 0 ? reader.Read<quint16>() & 15 : 0;
            reader.Skip(2);
            const quint64 base = ReadSized(reader, sizes >> 4 & 15);
            const size_t count = reader.Read<quint16>();
            CountNumbers(count + 1);
            for (size_t i = 0; i < count; ++i) {
                reader.Skip(indexBytes);
                const quint64 begin = base + ReadSized(reader, sizes >> 12);
                const quint64 length = ReadSized(reader, sizes >> 8 & 15);
                item.extents.push_back({method, begin, length});
            }
        }
    }

    QByteArrayView PropertyOf(const Item& item, QByteArrayView type) const {
        for (const size_t index : item.properties) {
            if (index > 0 && index <= properties_.size() && properties_[index - 1].type == type) {
                return properties_[index - 1].content;
            }
        }
        return {};
    }

    /// Of each of the three kinds a picture has one; every one is another walk over all its pixels.
    void RequireFewTurns(const Item& item) const {
        constexpr int MostTurns = 6;
        const auto turns = std::ranges::count_if(item.properties, [this](size_t index) {
            const auto type = index > 0 && index <= properties_.size() ? properties_[index - 1].type
                                                                       : QByteArrayView();
            return type == "irot" || type == "imir" || type == "clap";
        });
        RequireNone(turns > MostTurns);
    }

    qint64 SaidPixels(quint32 id) {
        const QByteArrayView size = PropertyOf(items_[id], "ispe");
        if (size.isNull()) {
            return 0;
        }
        ByteReader reader = BoxContent(size);
        reader.Skip(VersionBytes);
        const quint64 width = reader.Read<quint32>();
        return static_cast<qint64>(
            std::min<quint64>(width * reader.Read<quint32>(), std::numeric_limits<qint64>::max()));
    }

    QByteArray BytesOf(const Item& item) {
        QByteArray bytes;
        const auto wholeFile = static_cast<quint64>(file_.size());
        for (const Extent& extent : item.extents) {
            const QByteArrayView source = extent.method == 0 ? file_ : inside_;
            const auto whole = static_cast<quint64>(source.size());
            if (extent.begin < whole) {
                const quint64 length = std::min(extent.length, whole - extent.begin);
                // No byte stands for two items; twice the file leaves room for odd ones.
                located_ += length;
                RequireNone(located_ > 2 * wholeFile);
                bytes.append(source.sliced(static_cast<qsizetype>(extent.begin),
                                           static_cast<qsizetype>(length)));
            }
        }
        return bytes;
    }

    qint64 CodedPixelsOf(const Item& item) {
        const QByteArray bytes = BytesOf(item);
        const QByteArrayView hevc = PropertyOf(item, "hvcC");
        const QByteArrayView av1 = PropertyOf(item, "av1C");
        if (hevc.isNull() && av1.isNull()) {
            return 0;
        }
        const CodedPictures found =
            hevc.isNull() ? CodedAv1Pictures(av1, bytes) : CodedHevcPictures(hevc, bytes);
        constexpr qint64 Countless = 1LL << 31;
        return std::min(found.pixels, Countless) * std::clamp<qint64>(found.pictures, 1, Countless);
    }

    /// The item and all that it is made of, each as often as it is decoded.
    void Follow(quint32 id, int depth) {
        constexpr int Deepest = 6;
        constexpr int MostDecoded = 10'000;
        RequireNone(depth > Deepest || ++decoded_ > MostDecoded);
        const Item item = items_[id];
        auto known = coded_.find(id);
        if (known == coded_.end()) {
            RequireFewTurns(item);
            known = coded_.insert(id, CodedPixelsOf(item));
        }
        pixels_ += *known;
        RequireNone(*known > mostPixels_ || pixels_ > mostPixels_);
        for (const quint32 part : item.parts) {
            Follow(part, depth + 1);
        }
    }

    QByteArrayView file_;
    QByteArrayView inside_;
    bool isRead_ = false;
    quint32 primary_ = 0;
    size_t numbers_ = 0;
    quint64 located_ = 0;
    QHash<quint32, Item> items_;
    QHash<quint32, qint64> coded_;
    std::vector<Property> properties_;
    int decoded_ = 0;
    qint64 pixels_ = 0;
    qint64 mostPixels_ = 0;
};

}  // namespace

void RequireSoundItems(QByteArrayView file, const ReadTask& task) try {
    HeifItems(file).RequireBoundedWork();
} catch (const platform::OutOfBytes&) {
    task.Fail(DamagedOrIncompleteFileReason());
} catch (const TooManyItems&) {
    task.Fail(u"Diese Art von HEIF-Datei wird nicht unterstützt."_s);
}

}  // namespace kadrona::imaging
