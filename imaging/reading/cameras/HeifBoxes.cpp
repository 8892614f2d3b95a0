#include "imaging/reading/cameras/HeifBoxes.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "platform/ByteReader.h"

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

/// Takes in the boxes of one file.
class HeifBoxReader {
 public:
    explicit HeifBoxReader(HeifBoxes& boxes) : boxes_(boxes) {}

    void Read() { ReadBoxes(boxes_.file, {}, 0); }

 private:
    static constexpr int VersionBytes = HeifBoxes::VersionBytes;
    static constexpr size_t MostNumbers = 100'000;

    void CountNumbers(size_t count) {
        numbers_ += count;
        RequireNone(numbers_ > MostNumbers);
    }
    static quint32 ReadNumber(ByteReader& reader, bool isLong) {
        return isLong ? reader.Read<quint32>() : reader.Read<quint16>();
    }

    /// Of one box the library makes an object, and looks into it wherever it stands.
    void ReadBoxes(QByteArrayView bytes, QByteArrayView parent, int depth) {
        constexpr int Deepest = 8;
        RequireNone(depth > Deepest);
        ForEachBox(bytes, [&](QByteArrayView type, QByteArrayView content) {
            CountNumbers(1);
            boxes_.bytes += parent.isNull() && type != "mdat" ? content.size() : 0;
            if (parent == "ipco") {
                boxes_.properties.push_back({type, content});
            }
            ReadBox(type, content);
            if (const auto before = BytesBeforeBoxes(type, content)) {
                ByteReader(content).Skip(*before);
                ReadBoxes(content.sliced(*before), type, depth + 1);
            }
        });
    }

    /// Nothing where the box has no others in it.
    static std::optional<qsizetype> BytesBeforeBoxes(QByteArrayView type, QByteArrayView content) {
        if (type == "iinf") {
            return VersionBytes + (BoxContent(content).Read<quint8>() > 0 ? 4 : 2);
        }
        constexpr std::array Plain{"iprp", "ipco", "dinf", "grpl"};
        return std::ranges::find(Plain, type) != Plain.end() ? std::optional<qsizetype>(0)
               : type == "meta"                              ? VersionBytes
               : type == "dref" ? std::optional<qsizetype>(VersionBytes + 4)
                                : std::nullopt;
    }

    void ReadBox(QByteArrayView type, QByteArrayView content) {
        ByteReader reader = BoxContent(content);
        if (type == "meta") {
            RequireNone(boxes_.hasMeta);
            boxes_.hasMeta = true;
        } else if (type == "idat") {
            RequireNone(!boxes_.inside.isNull());  // the library takes another one
            boxes_.inside = content;
        } else if (type == "pitm") {
            const int version = reader.Read<quint8>();
            reader.Skip(3);
            boxes_.primary = boxes_.primary == 0 ? ReadNumber(reader, version > 0) : boxes_.primary;
        } else if (type == "iinf") {
            constexpr qsizetype MostItems = 4000;  // the library looks for each among all
            RequireNone(content.count("infe") > MostItems);
        } else if (type == "infe") {
            ReadEntry(reader);
        } else if (type == "iref") {
            ReadReferences(content);
        } else if (type == "iloc") {
            ReadLocations(reader);
        } else if (type == "ipco") {
            RequireNone(!boxes_.properties.empty());
        } else if (type == "ipma") {
            ReadAssociations(reader);
        } else if (type == "hvcC") {
            CountUnits(reader);
        }
    }

    /// ISO/IEC 14496-15, 8.3.3.1: each is kept on its own.
    void CountUnits(ByteReader reader) {
        constexpr int BeforeArrays = 22;
        reader.Skip(BeforeArrays);
        for (int arrays = reader.Read<quint8>(); arrays > 0; --arrays) {
            reader.Skip(1);
            const int units = reader.Read<quint16>();
            CountNumbers(units);
            for (int i = 0; i < units; ++i) {
                reader.Skip(reader.Read<quint16>());
            }
        }
    }

    /// ISO/IEC 14496-12, 8.11.6; older versions have no types.
    void ReadEntry(ByteReader reader) {
        const int version = reader.Read<quint8>();
        reader.Skip(3);
        HeifItem& item = boxes_.items[ReadNumber(reader, version > 2)];
        if (version < 2) {
            return;
        }
        reader.Skip(2);
        RequireNone(!item.type.isNull());  // the library takes one of both
        item.type = reader.Take(4);
        const QByteArrayView texts = reader.Take(reader.Remaining());
        const qsizetype kind = texts.indexOf('\0') + 1;
        const qsizetype packing = texts.indexOf('\0', kind) + 1;
        item.isPacked = item.type == "mime" && kind > 0 && packing > 0 && packing < texts.size() &&
                        texts[packing] != '\0';
    }

    void ReadReferences(QByteArrayView content) {
        const bool isLong = BoxContent(content).Read<quint8>() > 0;
        ByteReader(content).Skip(VersionBytes);
        ForEachBox(content.sliced(VersionBytes), [&](QByteArrayView type, QByteArrayView bytes) {
            ByteReader reader = BoxContent(bytes);
            const quint32 from = ReadNumber(reader, isLong);
            const size_t count = reader.Read<quint16>();
            CountNumbers(count + 1);
            for (size_t i = 0; i < count; ++i) {
                const quint32 to = ReadNumber(reader, isLong);
                if (type == "dimg") {
                    boxes_.items[from].parts.push_back(to);
                } else if (type == "auxl") {
                    boxes_.items[to].parts.push_back(from);
                }
            }
        });
    }

    void ReadAssociations(ByteReader reader) {
        const int version = reader.Read<quint8>();
        reader.Skip(2);
        const bool isLong = (reader.Read<quint8>() & 1) != 0;
        for (auto entries = reader.Read<quint32>(); entries > 0; --entries) {
            HeifItem& item = boxes_.items[ReadNumber(reader, version > 0)];
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
        for (const int bytes : {sizes >> 12, sizes >> 8 & 15, sizes >> 4 & 15, indexBytes}) {
            if (bytes != 0 && bytes != 4 && bytes != 8) {  // the library would read other places
                throw platform::OutOfBytes();
            }
        }
        for (auto left = ReadNumber(reader, version > 1); left > 0; --left) {
            HeifItem& item = boxes_.items[ReadNumber(reader, version > 1)];
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

    HeifBoxes& boxes_;
    size_t numbers_ = 0;
};

}  // namespace

HeifBoxes::HeifBoxes(QByteArrayView file) : file(file) {
    HeifBoxReader(*this).Read();
}

QByteArrayView HeifBoxes::PropertyOf(const HeifItem& item, QByteArrayView type) const {
    for (const size_t index : item.properties) {
        if (TypeOfProperty(index) == type) {
            return properties[index - 1].content;
        }
    }
    return {};
}

QByteArrayView HeifBoxes::BytesOf(const HeifExtent& extent) const {
    const QByteArrayView source = extent.method == 0 ? file : inside;
    const auto whole = static_cast<quint64>(source.size());
    const quint64 begin = std::min(extent.begin, whole);
    return source.sliced(static_cast<qsizetype>(begin),
                         static_cast<qsizetype>(std::min(extent.length, whole - begin)));
}

QByteArrayView HeifBoxes::TypeOfProperty(size_t index) const {
    return index > 0 && index <= properties.size() ? properties[index - 1].type : QByteArrayView();
}

}  // namespace kadrona::imaging
