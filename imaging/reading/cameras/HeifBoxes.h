#pragma once

#include <QByteArrayView>
#include <QHash>
#include <exception>
#include <vector>

namespace kadrona::imaging {

/// Where a part of an item's bytes lies.
struct HeifExtent {
    int method = 0;  ///< 0 in the file, 1 in the box "idat"
    quint64 begin = 0;
    quint64 length = 0;
};

struct HeifProperty {
    QByteArrayView type;
    QByteArrayView content;
};

struct HeifItem {
    QByteArrayView type;             ///< four letters
    bool isPacked = false;           ///< a text that the library unpacks
    std::vector<quint32> parts;      ///< pictures that are decoded for this one
    std::vector<size_t> properties;  ///< counted from 1; the file may name what is not there
    std::vector<HeifExtent> extents;
};

/// Thrown where a file has more of something than any picture needs.
class TooManyItems : public std::exception {};

inline void RequireNone(bool isMore) {
    if (isMore) {
        throw TooManyItems();
    }
}

/// What the box "meta" of a HEIF file (ISO/IEC 23008-12) says of its items. Refers to the file's
/// bytes.
struct HeifBoxes {
    /// What a box begins with that has a version.
    static constexpr int VersionBytes = 4;

    /// Every box of `file`, the whole one. Throws TooManyItems, and platform::OutOfBytes where a
    /// box ends early.
    explicit HeifBoxes(QByteArrayView file);

    /// The first of that type; null where the item has none.
    QByteArrayView PropertyOf(const HeifItem& item, QByteArrayView type) const;
    /// Empty where there is no such property.
    QByteArrayView TypeOfProperty(size_t index) const;
    /// What of an extent is there.
    QByteArrayView BytesOf(const HeifExtent& extent) const;

    QByteArrayView file;
    QByteArrayView inside;  ///< of the box "idat"
    qint64 bytes = 0;       ///< of all boxes but "mdat"
    bool hasMeta = false;
    quint32 primary = 0;
    QHash<quint32, HeifItem> items;
    std::vector<HeifProperty> properties;
};

}  // namespace kadrona::imaging
