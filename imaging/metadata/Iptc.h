#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

namespace kadrona::imaging {

/// One item of IPTC metadata (IIM 4.2): a dataset of a record, such as 2:25, the keywords.
struct IptcItem {
    int record = 0;
    int dataset = 0;
    /// UTF-8 where the dataset is a text, as nearly all of record 2 are; else what the file holds.
    QByteArray value;
    /// Set by this program; false for what a photo brought with it.
    bool own = false;

    bool operator==(const IptcItem&) const = default;
};

/// The IPTC items of an image, in the order of its file. A dataset may occur more than once.
class IptcItems {
 public:
    IptcItems() = default;
    explicit IptcItems(std::vector<IptcItem> items) : items_(std::move(items)) {}

    bool IsEmpty() const { return items_.empty(); }
    const std::vector<IptcItem>& Items() const { return items_; }

    /// Those that this program set. What customers' photos brought with them (names, places) is
    /// nobody's business in the files that are made of them.
    IptcItems Own() const;

    /// Of the first item of that kind; -1 where there is none.
    int IndexOf(int record, int dataset) const;

    /// Adds an item at the end; returns its index.
    int AddText(int record, int dataset, const QString& text);

    /// Throws std::out_of_range where there is no such item.
    void SetText(int index, const QString& text);
    QString Text(int index) const;

    bool operator==(const IptcItems&) const = default;

 private:
    std::vector<IptcItem> items_;
};

/// Of our own, a few hundred lines with PhotoshopBlock and IptcFile: Exiv2 was weighed, which wrote
/// XMP anew beside the items and changed a comment.
///
/// Reads an IIM stream that may come from anywhere, as far as it makes sense. Texts that are not
/// UTF-8 are taken as Windows-1252.
IptcItems DecodeIptc(QByteArrayView stream);

/// An IIM stream. The item 1:90 in front marks the texts as UTF-8, whatever the list says of it.
/// Empty where there are no items.
QByteArray EncodeIptc(const IptcItems& items);

}  // namespace kadrona::imaging
