#include "core/archive/ArchiveDeletion.h"

#include <algorithm>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/KeepingSchema.h"
#include "platform/Error.h"
#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr QLatin1StringView DeletionTimeFormat("yyyy-MM-dd HH:mm:ss");

/// So many records go in one transaction, which costs the same whatever it holds.
constexpr size_t RecordsAtOnce = 32;

/// Where `query` finds a folder and a name for the record, their file is to be removed.
void NoteFile(store::Database& database, const QString& query, qint64 id) {
    store::Statement files(database, query);
    if (files.Bind(1, id).Step() && !files.Text(1).isEmpty()) {
        store::Statement(
            database,
            uR"(INSERT INTO "ImgRemoval" ("Path", "ID") VALUES (?, ?) ON CONFLICT DO NOTHING)"_s)
            .Bind(1, StoredPath(files.Text(0), files.Text(1)))
            .Bind(2, id)
            .Step();
    }
}

/// Inside a transaction. False where there is no such record.
bool DeleteRecord(store::Database& database, qint64 id, const QString& now) {
    NoteFile(database, uR"(SELECT "ImgAblage", "ImgName" FROM "ImgDB" WHERE "ID" = ?)"_s, id);
    NoteFile(database, uR"(SELECT "Folder", "Name" FROM "ImgOriginal" WHERE "ID" = ?)"_s, id);
    if (!store::Statement(database, uR"(DELETE FROM "ImgDB" WHERE "ID" = ? RETURNING "ID")"_s)
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

}  // namespace

QStringList FinishDeletion(store::Database& database, const QString& archiveFolder) {
    if (!HasKeeping(database)) {
        return {};
    }
    QStringList paths;
    {
        store::Statement noted(database, uR"(SELECT "Path" FROM "ImgRemoval" ORDER BY "Path")"_s);
        while (noted.Step()) {
            paths.append(noted.Text(0));
        }
    }
    if (paths.isEmpty()) {
        return {};
    }
    RequireArchiveFolder(archiveFolder);
    QStringList failures;
    QStringList removed;
    for (const QString& path : paths) {
        try {
            RemoveArchiveFile(StoredFolderPath(archiveFolder, path), archiveFolder);
            removed.append(path);
        } catch (const platform::FileError& error) {
            failures.append(error.Text());
        }
    }
    store::Transaction transaction(database);
    store::Statement forget(database, uR"(DELETE FROM "ImgRemoval" WHERE "Path" = ?)"_s);
    for (const QString& path : removed) {
        forget.Bind(1, path).Step();
        forget.Reset();
    }
    transaction.Commit();
    return failures;
}

Deletion DeleteRecords(store::Database& database, const QString& archiveFolder,
                       const std::vector<qint64>& ids, const QDateTime& now,
                       const platform::Progress& progress) {
    RequireArchiveFolder(archiveFolder);
    CreateKeeping(database);
    const auto all = static_cast<qint64>(ids.size());
    Deletion deletion;
    for (size_t begin = 0; begin < ids.size(); begin += RecordsAtOnce) {
        progress(u"Bilder werden gelöscht …"_s, static_cast<qint64>(begin), all);
        {
            store::Transaction transaction(database);
            for (size_t i = begin; i < std::min(ids.size(), begin + RecordsAtOnce); ++i) {
                deletion.deleted +=
                    DeleteRecord(database, ids[i], now.toString(DeletionTimeFormat)) ? 1 : 0;
            }
            transaction.Commit();
        }
        deletion.failures = FinishDeletion(database, archiveFolder);
    }
    return deletion;
}

std::vector<qint64> BlankRecords(store::Database& database) {
    store::Statement blank(
        database,
        uR"(SELECT "ID" FROM "ImgDB" WHERE "ImgErstellt" IS NULL AND "ImgName" IS NULL
                      ORDER BY "ID")"_s);
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
