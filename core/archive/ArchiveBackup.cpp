#include "core/archive/ArchiveBackup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QScopeGuard>
#include <QSet>
#include <algorithm>
#include <vector>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveTransfer.h"
#include "core/archive/KeepingSchema.h"
#include "platform/AtomicFile.h"
#include "platform/CountedText.h"
#include "platform/Error.h"
#include "platform/FolderListing.h"
#include "platform/Paths.h"
#include "platform/Renaming.h"
#include "store/Statement.h"
#include "store/Transaction.h"
#include "store/sqlite/SqliteDatabase.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString BackingUpText = u"Die Fotos werden gesichert …"_s;
const QString CopiedDatabase = u"KDRImageBase.db"_s;
/// What the copy is called until all files are there.
const QString WaitingDatabase = u"KDRImageBase.neu.db"_s;
/// Where that of a server is made.
const QString MakingFolder = u"KDRImageBase.neu"_s;

/// The file that says whose backup it is; other words before it are for the reader.
QString MarkerText(store::Database& database) {
    return u"Sicherung eines Bildarchivs. Bitte nicht löschen: Ohne diese Datei wird der Ordner "
           u"nicht fortgesetzt.\n%1\n"_s.arg(ArchiveIdentity(database));
}

/// What of the folder in which a server's records are copied is ours, after a crash too.
void RemoveMakingFolder(const QString& folder) {
    for (const auto* end : {"", "-wal", "-shm", "-journal"}) {
        QFile::remove(platform::JoinPath(folder, CopiedDatabase + QLatin1StringView(end)));
    }
    QDir().rmdir(folder);
}

/// Throws where a backup there would be mixed with other files, or copy itself.
void RequireTarget(const QString& archiveFolder, const QString& target, const QString& markerText) {
    if (!IsArchiveFolder(target)) {
        throw platform::FileError(
            u"Der Ordner „%1“ für die Sicherung ist nicht erreichbar."_s.arg(target));
    }
    const QString from = QFileInfo(archiveFolder).canonicalFilePath();
    const QString to = QFileInfo(target).canonicalFilePath();
    if (IsInsideArchive(to, from) || IsInsideArchive(from, to)) {
        throw platform::FileError(
            u"Die Sicherung braucht einen Ordner außerhalb des Archivs; „%1“ liegt darin oder "
            u"darum."_s.arg(target));
    }
    constexpr qint64 LongestMarker = 1000;
    const QString marker = platform::JoinPath(target, QString(BackupMarker));
    RequireOwnWay(marker, target);
    const auto found = platform::ReadFileIfThere(marker, LongestMarker);
    if (found && found->simplified().endsWith(markerText.toUtf8().simplified())) {
        return;
    }
    if (found || !platform::FolderEntries(target).isEmpty()) {
        throw platform::FileError(
            u"Im Ordner „%1“ liegen andere Dateien. Wählen Sie einen leeren Ordner oder den der "
            u"letzten Sicherung dieses Archivs."_s.arg(target));
    }
    platform::WriteFileAtomically(marker, markerText.toUtf8());
}

/// The checksums of the database by their files' paths.
QHash<QString, FileDigest> KnownDigests(store::Database& database, const QString& archiveFolder) {
    QHash<QString, FileDigest> digests;
    for (const QString& query :
         {uR"(SELECT p."ImgAblage", p."ImgName", c."Bytes", c."Sha256"
              FROM "ImgDB" p JOIN "ImgChecksum" c ON c."ID" = p."ID")"_s,
          uR"(SELECT "Folder", "Name", "Bytes", "Sha256" FROM "ImgOriginal")"_s}) {
        store::Statement select(database, query);
        while (select.Step()) {
            digests.insert(QDir::cleanPath(StoredFolderPath(
                               archiveFolder, StoredPath(select.Text(0), select.Text(1)))),
                           {select.Integer(2), select.Text(3)});
        }
    }
    return digests;
}

class BackupRun {
 public:
    BackupRun(store::Database& database, const QString& archiveFolder, const QString& target,
              const platform::Progress& progress)
        : database_(database),
          from_(QDir::cleanPath(archiveFolder)),
          target_(target),
          to_(platform::JoinPath(target, QString(BackupFiles))),
          progress_(progress) {}

    Backup Run() {
        const QString waiting = platform::JoinPath(target_, WaitingDatabase);
        const auto clean = qScopeGuard([&] { QFile::remove(waiting); });
        RequireOwnWay(to_, target_);
        platform::RequireFolder(to_);
        if (!database_.CopyTo(waiting, progress_)) {
            CopyRecords(waiting);
        }
        CopyFiles();
        RemoveDeleted();
        platform::RenameOnDisk(waiting, platform::JoinPath(target_, CopiedDatabase));
        return std::move(backup_);
    }

 private:
    /// Of a server: into a file of our own, made in a folder that goes again.
    void CopyRecords(const QString& waiting) {
        const QString folder = platform::JoinPath(target_, MakingFolder);
        RequireOwnWay(folder, target_);
        RemoveMakingFolder(folder);
        const auto clean = qScopeGuard([&] { RemoveMakingFolder(folder); });
        platform::RequireFolder(folder);
        {
            store::SqliteDatabase copy(folder);
            const store::Snapshot moment(database_);
            TransferArchive(database_, copy, progress_);
        }
        platform::RenameOnDisk(platform::JoinPath(folder, CopiedDatabase), waiting);
    }

    void CopyFiles() {
        const QHash<QString, FileDigest> digests = KnownDigests(database_, from_);
        const QSet<QString> named = NamedFiles(database_);
        QStringList paths;
        const auto unread = platform::WalkFolder(from_, [&](const platform::FoundFile& file) {
            if (file.isRegular) {
                paths.append(file.path);
            }
            progress_(u"Der Ordner des Archivs wird durchgesehen …"_s, 0, 0);
        });
        for (const platform::UnreadFolder& folder : unread) {
            backup_.failures.append(folder.text);
        }
        qint64 done = 0;
        for (const QString& path : paths) {
            RequireSameTarget();
            progress_(BackingUpText, done++, paths.size());
            try {
                const FileTick tick = [&] { progress_(BackingUpText, done, paths.size()); };
                CopyWhereNeeded(path, digests, tick);
            } catch (const platform::FileError& error) {
                backup_.failures.append(error.Text());
            }
        }
        CountMissing(named, QSet<QString>(paths.begin(), paths.end()), unread);
    }

    /// Of the files that were named before the folder was walked through, those that are named
    /// still: the others were deleted meanwhile. Those of folders that could not be read may be
    /// there.
    void CountMissing(const QSet<QString>& named, const QSet<QString>& found,
                      const std::vector<platform::UnreadFolder>& unread) {
        const QSet<QString> still = NamedFiles(database_);
        const auto missing = std::ranges::count_if(named, [&](const QString& stored) {
            const QString path = QDir::cleanPath(StoredFolderPath(from_, stored));
            const bool isUnknown = std::ranges::any_of(
                unread, [&](const auto& folder) { return IsInsideArchive(path, folder.path); });
            return still.contains(stored) && !found.contains(path) && !isUnknown;
        });
        if (missing > 0) {
            backup_.failures.append(
                u"%1, die die Datenbank nennt, %2 nicht im Ordner des Archivs „%3“. Eine Prüfung "
                u"des Archivs nennt sie."_s.arg(
                    platform::CountedText(missing, u"Datei"_s, u"Dateien"_s),
                    missing == 1 ? u"liegt"_s : u"liegen"_s, from_));
        }
    }

    /// A stick that was pulled out leaves a folder of this machine under its name.
    void RequireSameTarget() const {
        if (!platform::IsFile(platform::JoinPath(target_, QString(BackupMarker)))) {
            throw platform::FileError(
                u"Der Ordner „%1“ ist nicht mehr der, in dem die Sicherung begann."_s.arg(target_));
        }
    }

    void CopyWhereNeeded(const QString& path, const QHash<QString, FileDigest>& digests,
                         const FileTick& tick) {
        const QString copy = platform::JoinPath(to_, QDir(from_).relativeFilePath(path));
        RequireOwnWay(copy, target_);
        const auto present = DigestOf(path, tick);
        if (!present) {
            return;  // deleted meanwhile
        }
        const bool sameSize = QFileInfo(copy).size() == present->bytes;
        const auto known = digests.constFind(path);
        const bool damaged = known != digests.constEnd() && *known != *present;
        const auto kept = sameSize || damaged ? DigestOf(copy, tick) : std::nullopt;
        if (kept == present) {
            ++backup_.unchanged;
        } else if (damaged && kept == *known) {
            backup_.failures.append(
                u"Die Datei „%1“ ist beschädigt; die Sicherung behält die gute Fassung."_s.arg(
                    path));
        } else {
            platform::RequireFolder(QFileInfo(copy).path());
            CopyArchiveFile(path, copy, platform::Links::Own, tick);
            ++backup_.copied;
        }
    }

    /// Whose files came again, by hand or from another backup, keeps them.
    void RemoveDeleted() {
        QSet<QString> paths;
        store::Statement deleted(database_, uR"(SELECT "Path" FROM "ImgDeletedFile")"_s);
        while (deleted.Step()) {
            paths.insert(deleted.Text(0));
        }
        for (const QString& path : paths - FilesOfNoDeletedPhoto(database_, paths)) {
            const QString copy = StoredFolderPath(to_, path);
            if (IsInsideArchive(copy, to_) && QFileInfo(copy).isFile() &&
                !QFileInfo::exists(StoredFolderPath(from_, path))) {
                Remove(copy);
            }
        }
    }

    void Remove(const QString& copy) {
        try {
            RemoveArchiveFile(copy, to_);
            ++backup_.removed;
        } catch (const platform::FileError& error) {
            backup_.failures.append(error.Text());
        }
    }

    store::Database& database_;
    QString from_;
    QString target_;
    QString to_;
    const platform::Progress& progress_;
    Backup backup_;
};

}  // namespace

Backup BackUpArchive(store::Database& database, const QString& archiveFolder, const QString& target,
                     const platform::Progress& progress) {
    RequireArchiveFolder(archiveFolder);
    if (const QString reason = WhyUnmounted(database, archiveFolder); !reason.isEmpty()) {
        throw platform::FileError(reason);
    }
    RequireTarget(archiveFolder, target, MarkerText(database));
    const platform::Progress answering = WhileAnswering({archiveFolder, target}, progress);
    return BackupRun(database, archiveFolder, target, answering).Run();
}

}  // namespace kadrona::core
