#include "core/archive/ArchiveDeletion.h"

#include <QDir>
#include <QSet>
#include <algorithm>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/KeepingSchema.h"
#include "platform/Error.h"
#include "platform/SilenceWatch.h"
#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr QLatin1StringView DeletionTimeFormat("yyyy-MM-dd HH:mm:ss");

/// So many records go in one transaction, which costs the same whatever it holds.
constexpr size_t RecordsAtOnce = 32;

/// A table of records with a file each.
struct FileTable {
    QLatin1StringView table;
    QLatin1StringView folder;
    QLatin1StringView name;
};
constexpr FileTable PhotoTable{"ImgDB"_L1, "ImgAblage"_L1, "ImgName"_L1};
constexpr FileTable OriginalTable{"ImgOriginal"_L1, "Folder"_L1, "Name"_L1};

/// Names that several rows have: found once, for no index finds the rows of a name.
QSet<QString> SharedNames(store::Database& database, const FileTable& of) {
    store::Statement select(database,
                            uR"(SELECT "%1" FROM "%2" WHERE "%1" IS NOT NULL
                                          GROUP BY "%1" HAVING count(*) > 1)"_s.arg(of.name,
                                                                                    of.table));
    QSet<QString> names;
    while (select.Step()) {
        names.insert(select.Text(0));
    }
    return names;
}

/// Notes the files of records that are to be deleted.
class FileNotes {
 public:
    explicit FileNotes(store::Database& database)
        : database_(database),
          sharedPhotos_(SharedNames(database, PhotoTable)),
          sharedOriginals_(SharedNames(database, OriginalTable)) {}

    /// Inside a transaction.
    void Note(qint64 id) {
        NoteFile(PhotoTable, sharedPhotos_, id);
        NoteFile(OriginalTable, sharedOriginals_, id);
    }

    /// As stored in the notes.
    const QSet<QString>& Paths() const { return paths_; }

 private:
    /// Not where another record has the same file.
    void NoteFile(const FileTable& of, const QSet<QString>& shared, qint64 id) {
        store::Statement file(database_, uR"(SELECT "%1", "%2" FROM "%3" WHERE "ID" = ?)"_s.arg(
                                             of.folder, of.name, of.table));
        if (!file.Bind(1, id).Step() || file.Text(1).isEmpty()) {
            return;
        }
        if (shared.contains(file.Text(1)) && IsShared(of, file.Text(0), file.Text(1), id)) {
            return;
        }
        const QString path = StoredPath(file.Text(0), file.Text(1));
        paths_.insert(path);
        for (const auto* table : {"ImgRemoval", "ImgDeletedFile"}) {
            store::Statement(
                database_,
                uR"(INSERT INTO "%1" ("Path", "ID") VALUES (?, ?) ON CONFLICT DO NOTHING)"_s.arg(
                    QLatin1StringView(table)))
                .Bind(1, path)
                .Bind(2, id)
                .Step();
        }
    }

    bool IsShared(const FileTable& of, const QString& folder, const QString& name, qint64 id) {
        return store::Statement(database_,
                                uR"(SELECT "ID" FROM "%1" WHERE "%2" = ? AND "%3" = ?
                                    AND "ID" <> ? LIMIT 1)"_s.arg(of.table, of.folder, of.name))
            .Bind(1, folder)
            .Bind(2, name)
            .Bind(3, id)
            .Step();
    }

    store::Database& database_;
    QSet<QString> sharedPhotos_;
    QSet<QString> sharedOriginals_;
    QSet<QString> paths_;
};

/// Of a record that has a number alone.
constexpr QStringView IsBlank = uR"("ImgErstellt" IS NULL AND "ImgName" IS NULL)";

/// Inside a transaction. False where there is no such record.
bool DeleteRecord(store::Database& database, FileNotes& notes, qint64 id, const QString& now,
                  Deletable which) {
    QString condition;
    if (which == Deletable::Blank) {
        condition = u" AND "_s + IsBlank.toString();
    } else {
        notes.Note(id);
    }
    if (!store::Statement(
             database, uR"(DELETE FROM "ImgDB" WHERE "ID" = ?%1 RETURNING "ID")"_s.arg(condition))
             .Bind(1, id)
             .Step()) {
        return false;
    }
    for (const auto* table : {"ImgChecksum", "ImgOriginal", "ImgKeepUntil"}) {
        store::Statement(database,
                         uR"(DELETE FROM "%1" WHERE "ID" = ?)"_s.arg(QLatin1StringView(table)))
            .Bind(1, id)
            .Step();
    }
    store::FullTextIndex(database, TagIndexName).Remove(id);
    store::Statement(database,
                     uR"(INSERT INTO "ImgDeleted" ("ID", "Deleted") VALUES (?, ?)
                                   ON CONFLICT ("ID") DO UPDATE SET "Deleted" = excluded."Deleted")"_s)
        .Bind(1, id)
        .Bind(2, now)
        .Step();
    return true;
}

/// Files of deleted records that may still be there.
QStringList NotedRemovals(store::Database& database) {
    QStringList paths;
    store::Statement noted(database, uR"(SELECT "Path" FROM "ImgRemoval" ORDER BY "Path")"_s);
    while (noted.Step()) {
        paths.append(noted.Text(0));
    }
    return paths;
}

void ForgetRemovals(store::Database& database, const QStringList& paths) {
    store::Transaction transaction(database);
    store::Statement forget(database, uR"(DELETE FROM "ImgRemoval" WHERE "Path" = ?)"_s);
    for (const QString& path : paths) {
        forget.Bind(1, path).Step();
        forget.Reset();
    }
    transaction.Commit();
}

/// `justNoted`: by this program, which has looked that no other record has these files.
QStringList RemoveNoted(store::Database& database, const QString& archiveFolder,
                        const QSet<QString>& justNoted) {
    if (!database.TableExists(u"ImgRemoval"_s)) {
        return {};
    }
    const QStringList paths = NotedRemovals(database);
    if (paths.isEmpty()) {
        return {};
    }
    const platform::SilenceWatch watch(AwaitedArchive(archiveFolder));
    RequireArchiveFolder(archiveFolder);
    if (const QString reason = WhyUnmounted(database, archiveFolder); !reason.isEmpty()) {
        return {reason};
    }
    // Who may write to the database may not have any file removed by that alone.
    const QSet<QString> foreign =
        FilesOfNoDeletedPhoto(database, QSet<QString>(paths.begin(), paths.end()) - justNoted);
    QStringList failures;
    QStringList removed;
    for (const QString& path : paths) {
        const QString file = StoredFolderPath(archiveFolder, path);
        if (foreign.contains(path)) {
            failures.append(
                u"Die Datei „%1“ ist keine eines gelöschten Bildes und wird nicht entfernt."_s.arg(
                    file));
            removed.append(path);
            continue;
        }
        try {
            RemoveArchiveFile(file, archiveFolder);
            removed.append(path);
        } catch (const platform::FileError& error) {
            failures.append(error.Text());
            if (!IsInsideArchive(file, archiveFolder)) {
                removed.append(path);  // never ours: said once
            }
        }
    }
    ForgetRemovals(database, removed);
    return failures;
}

}  // namespace

QStringList FinishDeletion(store::Database& database, const QString& archiveFolder) {
    return RemoveNoted(database, archiveFolder, {});
}

Deletion DeleteRecords(store::Database& database, const QString& archiveFolder,
                       const std::vector<qint64>& ids, const QDateTime& now,
                       const platform::Progress& progress, Deletable which) {
    RequireArchiveFolder(archiveFolder);
    CreateKeeping(database);
    const auto all = static_cast<qint64>(ids.size());
    FileNotes notes(database);
    Deletion deletion;
    for (size_t begin = 0; begin < ids.size(); begin += RecordsAtOnce) {
        progress(u"Bilder werden gelöscht …"_s, static_cast<qint64>(begin), all);
        {
            store::Transaction transaction(database);
            for (size_t i = begin; i < std::min(ids.size(), begin + RecordsAtOnce); ++i) {
                const bool gone =
                    DeleteRecord(database, notes, ids[i], now.toString(DeletionTimeFormat), which);
                deletion.deleted += gone ? 1 : 0;
            }
            transaction.Commit();
        }
        deletion.failures += RemoveNoted(database, archiveFolder, notes.Paths());
    }
    deletion.failures.removeDuplicates();
    return deletion;
}

std::vector<qint64> BlankRecords(store::Database& database) {
    store::Statement blank(database,
                           uR"(SELECT "ID" FROM "ImgDB" WHERE %1 ORDER BY "ID")"_s.arg(IsBlank));
    std::vector<qint64> ids;
    while (blank.Step()) {
        ids.push_back(blank.Integer(0));
    }
    return ids;
}

void CompactArchive(store::Database& database, const platform::Progress& progress) {
    database.Compact(TagIndexName, progress);
}

}  // namespace kadrona::core
