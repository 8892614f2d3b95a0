#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "core/archive/ArchiveServer.h"
#include "core/archive/ArchiveTable.h"
#include "core/archive/FilingQueue.h"
#include "core/base/FileNaming.h"
#include "imaging/document/LayeredImage.h"
#include "store/Database.h"

namespace kadrona::core {

/// What is known of a photo that is to be filed.
struct PhotoToFile {
    QString archiveFolder;
    QString templateName;
    QString tags;  ///< see TagText
    QString objectName;
    /// Kept beside it where it is given.
    std::optional<OriginalToKeep> original = {};
};

/// How the filing of a photo ended. It waits where the server with the database is gone.
enum class Filing { Done, NoDatabase, NoFolder, Waits };

/// The archive: its database, and the photos in the folders of the months.
class PhotoArchive {
 public:
    /// `names` outlives the archive.
    explicit PhotoArchive(const NameSources& names) : names_(names) {}

    /// Opens the database in a folder. Throws platform::Error.
    void Connect(const QString& folder);
    /// Opens the one of a server and makes what it lacks. Throws platform::Error; whenever the
    /// server is gone, then or later, each use of the table tries it again, but only some seconds
    /// after the last time: whoever asks in between is told at once.
    void Connect(const store::ServerAddress& server);
    /// Tries a server that is gone, however short ago it was tried. True where it is there.
    bool IsBack(std::chrono::milliseconds connecting);
    bool IsAway() const;
    bool IsOnServer() const { return server_.has_value(); }
    /// See store::Database; for this database and those that are opened later.
    void WhileWaiting(const std::function<void()>& tick);
    /// True once after each time that the server went away: what nobody has been told yet.
    bool IsNewsThatItIsAway() { return IsAway() && std::exchange(untold_, false); }
    /// Why it is, or was last; empty where it never was.
    const QString& WhyAway() const { return whyAway_; }
    /// Makes what the database lacks; false where none is connected. Throws platform::Error.
    bool Create();
    /// Opened on first use; null while there is none. Throws store::StoreError where the server
    /// with it is gone.
    ArchiveTable* Table();
    /// What Table() lies in. Throws platform::Error where there is none.
    store::Database& Database();

    /// Files an image's photo: as a JPEG in the month's folder below the archive's, which is made
    /// where the archive's exists, and as a record, the current one from then on. A file that is
    /// there already is never replaced: its number is left out. Tags and object name go into the
    /// image's IPTC items as SetIptcTags does, and into the file.
    ///
    /// An original that cannot be kept counts as a photo that cannot be written.
    ///
    /// Does nothing without the table, or where the month's folder cannot be made. Throws
    /// imaging::WriteError where the photo cannot be written, which leaves an empty record, and
    /// store::StoreError where its record cannot; no photo is left then. Where the server is gone
    /// the photo is put into the queue.
    Filing File(imaging::LayeredImage& image, const PhotoToFile& known);

    /// What speaks against a folder as the archive's: it is empty, or without the newest photo's
    /// folder, yet the database knows photos, as where a drive or share is not connected. A
    /// sentence and a question; else empty, also where the server is gone. Throws platform::Error.
    QString WhyUnmounted(const QString& archiveFolder);

    /// The photos that wait, and the filing of one of them, in the month of its date; one that is
    /// filed waits no longer. Throws as File does, and platform::FileError where WhyUnmounted says
    /// something.
    const FilingQueue& Queue() const { return queue_; }
    Filing FileWaiting(const QString& name);

    /// 0 is none.
    qint64 CurrentRecord() const { return currentRecord_; }
    void SetCurrentRecord(qint64 id) { currentRecord_ = id; }
    /// Where the current record's photo should be.
    QString PathOfCurrent(const QString& archiveFolder);

    /// Lists only the records whose tags hold every word of `text`; all again where it is empty.
    void Filter(const QString& text);

 private:
    class ClaimedFile;
    void Open(std::unique_ptr<store::Database> database);
    void OpenServer(std::chrono::milliseconds connecting = store::ServerPatience().connecting);
    /// Writes a photo's file, whose name is nobody else's.
    using PhotoWriter = std::function<void(const QString& path)>;
    /// A waiting photo that has its record, from a run that was ended or never heard the server's
    /// answer; false where it has none.
    bool FinishFiling(const WaitingPhoto& waiting);
    Filing FileAs(const PhotoToFile& known, const NameSources& names, const PhotoWriter& write,
                  const QByteArray& thumbnail);

    const NameSources& names_;
    std::optional<store::ServerAddress> server_;
    QString whyAway_;
    /// What kept the server from being opened last, and when to try again.
    std::exception_ptr refusal_;
    QDeadlineTimer nextTry_;
    bool untold_ = true;
    FilingQueue queue_;
    std::function<void()> whileWaiting_;
    std::unique_ptr<store::Database> database_;
    std::unique_ptr<ArchiveTable> table_;
    qint64 currentRecord_ = 0;
};

}  // namespace kadrona::core
