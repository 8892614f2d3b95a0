#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

namespace kadrona::platform {

/// What a folder that others write into holds: a card, or where a camera's program puts photos.
/// Whoever owns it looks again and again; no service of the system is asked, for those of network
/// folders and cards that come and go cannot be relied on.
class FolderWatch {
 public:
    /// `patterns` as "*.jpg", whatever their case. Hidden files and links are passed over. Where
    /// the folder is a card, or a card's DCIM, the folders in DCIM are looked into as well.
    FolderWatch(QString folder, QStringList patterns);

    const QString& Folder() const { return folder_; }

    /// A folder of more files and folders is passed over as if it were empty: each look would take
    /// seconds.
    static constexpr int MostEntries = 20'000;
    /// Whether the last look found more.
    bool IsCrowded() const { return crowded_; }

    /// Reads the folder once. A file is complete once two looks in a row have found the same size
    /// and time of change, and a size at all. True where Files() changed.
    bool Look();

    /// The paths of the complete files, newest first. None while there is no such folder.
    const QStringList& Files() const { return files_; }

    /// Those that were not there, as they are now, at the first look that found the folder, each
    /// once, newest first. A folder that vanished and came back as it was has none.
    QStringList TakeArrived();

    /// The file is passed over until it changes, for it cannot be read as it is.
    void PassOver(const QString& path);

 private:
    struct State {
        qint64 size = 0;
        QDateTime changed;
        bool operator==(const State&) const = default;
    };

    QString folder_;
    QStringList patterns_;
    bool looked_ = false;
    bool crowded_ = false;
    QHash<QString, State> seen_;   ///< at the last look
    QHash<QString, State> known_;  ///< no arrivals any more
    QHash<QString, State> refused_;
    QStringList files_;
    QStringList arrived_;
};

}  // namespace kadrona::platform
