#pragma once

#include <QString>
#include <vector>

#include "core/sheet/CollectedSheet.h"

namespace kadrona::core {

/// The pictures that wait for a collected sheet, kept in a folder until they are printed or taken
/// out: a PNG file for each, and a list of them (JSON). Every change is on the disk when it
/// returns, through platform::AtomicFile.
class SheetTray {
 public:
    /// `folder` need not exist while nothing is in the tray.
    explicit SheetTray(QString folder) : folder_(std::move(folder)) {}

    /// Reads what is kept. A picture whose file is gone or damaged is left out. Throws
    /// platform::Error where the list cannot be read; the tray is then empty and keeps the files.
    void Load();

    const std::vector<CollectedItem>& Items() const { return items_; }

    /// A picture finer than HighestCollectedResolution is kept at that. Throws platform::Error with
    /// the tray as it was, as the others do.
    void Add(CollectedItem item);
    void SetCount(size_t index, int count);
    /// Puts an item to another place of the order.
    void Move(size_t from, size_t to);
    void Remove(size_t index);
    void Clear();
    /// Takes out what a sheet of this layout showed.
    void TakeOut(const CollectedLayout& layout);

 private:
    void Save(const std::vector<CollectedItem>& items, const std::vector<QString>& files);
    QString NewFile() const;

    QString folder_;
    std::vector<CollectedItem> items_;
    /// Bare names of the items' files.
    std::vector<QString> files_;
};

/// An item of the list, without its picture, and its file.
struct ListedItem {
    CollectedItem item;
    QString file;
};

/// Reads a list of a tray, which anybody may have written: what makes no sense is left out. Throws
/// platform::Error for what is no list at all.
std::vector<ListedItem> ParseTrayList(const QByteArray& json);

}  // namespace kadrona::core
