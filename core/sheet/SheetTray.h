#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "core/sheet/CollectedSheet.h"
#include "platform/Error.h"

namespace kadrona::core {

/// An item of the list, without its picture, and its file.
struct ListedItem {
    CollectedItem item;
    QString file;
};

/// How many copies of a picture of the tray, named by its file, a sheet shows.
struct TrayCopies {
    QString file;
    int count;
};

/// The text is the reason, without a full stop, where it comes from ParseTrayList.
class DamagedList : public platform::Error {
    using Error::Error;
};

/// The pictures that wait for a collected sheet, kept in a folder until they are printed or taken
/// out: a PNG file for each, and a list of them (JSON). Every change is on the disk when it
/// returns, through platform::AtomicFile. Two programs may share a folder: a change is made to what
/// the list says at that moment, under a lock, and concerns only the picture that it was meant for.
class SheetTray {
 public:
    /// Beyond it no further picture is read: whoever shares the folder may have laid any there.
    static constexpr std::chrono::milliseconds LongestReading{10'000};

    /// `folder` need not exist while nothing is in the tray.
    explicit SheetTray(QString folder, std::chrono::milliseconds longestReading = LongestReading)
        : folder_(std::move(folder)), longestReading_(longestReading) {}

    /// Reads what is kept. A picture whose file is gone is left out; one whose file cannot be read,
    /// or not in time, is not shown, but kept in the list. Throws platform::Error where the list
    /// cannot be read; the tray is then empty and keeps the files.
    void Load();
    /// The same, but what could not be read the last time is not tried again, as it is not by the
    /// changes below: a window does this each time it is come back to.
    void Follow();
    /// Why a picture of the list is not shown, as a sentence; empty where all are.
    const QString& UnreadPicture() const { return content_.failure; }

    const std::vector<CollectedItem>& Items() const { return content_.items; }

    /// A picture finer than HighestCollectedResolution is kept at that. Throws platform::Error with
    /// the tray as it was, as the others do. After each of them the items are those of the list,
    /// with what another program has changed; what it has taken out is left alone. A damaged list
    /// is renamed and told; the next change begins a new one.
    void Add(CollectedItem item);
    void SetCount(size_t index, int count);
    /// Puts an item to the place of another one.
    void Move(size_t from, size_t to);
    void Remove(size_t index);
    /// Takes out the items that are known; one that another program has added since stays.
    void Clear();

    /// What a sheet of this layout shows.
    std::vector<TrayCopies> CopiesOn(const CollectedLayout& layout) const;
    /// Takes out copies that were printed, whatever became of the order meanwhile.
    void TakeOut(const std::vector<TrayCopies>& printed);

 private:
    void RemoveFiles(const QStringList& names) const;

    struct Content {
        std::vector<CollectedItem> items;
        /// Bare names of the items' files.
        std::vector<QString> files;
        /// What the list says of files that cannot be read, by the number of items before them, and
        /// why the last of them cannot.
        std::multimap<size_t, ListedItem> unread;
        QString failure;

        /// Nothing where the file is not in the list.
        std::optional<size_t> IndexOf(const QString& file) const;
        bool CouldNotRead(const QString& file) const;
        void Remove(size_t index);
    };

    enum class Unread { TryAgain, LeaveOut };

    void Take(Unread unread);
    Content Read(Unread unread) const;
    /// As ParseTrayList, but the text names the file.
    std::vector<ListedItem> Listed(const QByteArray& json) const;
    /// Throws platform::Error for a damaged list too, which has another name then.
    Content ReadOrSetAside() const;
    imaging::Pixels PictureOf(const ListedItem& listed, qint64 room,
                              const QDeadlineTimer& end) const;
    void Save(const Content& content) const;
    /// Changes what the list says now.
    void Change(const std::function<void(Content&)>& change);
    /// The same for one item, where it is still in the list.
    void ChangeItem(size_t index, const std::function<void(Content&, size_t index)>& change);
    QString NewFile() const;
    /// Where a file of the tray is, without links. Throws platform::FileError.
    QString PathOf(const QString& file) const;
    void RequireRoom(const imaging::Pixels& picture) const;

    QString folder_;
    std::chrono::milliseconds longestReading_;
    Content content_;
};

/// Reads a list of a tray, which anybody may have written: what makes no sense is left out. Throws
/// DamagedList for what is no list at all.
std::vector<ListedItem> ParseTrayList(const QByteArray& json);

}  // namespace kadrona::core
