#include "core/archive/ArchiveTable.h"

#include <algorithm>
#include <utility>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveSchema.h"
#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Sorts as text in the order of time; SQLite's own date functions understand it.
constexpr QLatin1StringView StoredTimeFormat("yyyy-MM-dd HH:mm:ss.zzz");

/// Cut to a field's length without leaving half of a character.
QString Cut(const QString& text, qsizetype length) {
    const bool inside = text.size() > length && text[length].isLowSurrogate();
    return text.left(inside ? length - 1 : length);
}

}  // namespace

QString TagText(const QStringList& lines) {
    QString text;
    for (const QString& line : lines) {
        text += line + u"\r\n"_s;
    }
    return text;
}

QStringList TagLines(const QString& tags) {
    QStringList lines;
    for (const QString& line : tags.split(u'\n', Qt::SkipEmptyParts)) {
        lines.append(line.trimmed());
    }
    return lines;
}

QString ShownTime(const QDateTime& created) {
    return created.toString(u"dd.MM.yyyy HH:mm"_s);
}

qint64 ArchiveTable::Insert(const std::function<bool(qint64 id)>& isTaken) {
    store::Transaction transaction(database_);
    const auto insert = [this] {
        store::Statement empty(database_,
                               uR"(INSERT INTO "ImgDB" DEFAULT VALUES RETURNING "ID")"_s);
        empty.Step();
        return empty.Integer(0);
    };
    qint64 id = insert();
    while (isTaken(id)) {
        // The database gives the next one too: another workplace may be about to take it.
        const qint64 taken = std::exchange(id, insert());
        store::Statement(database_, uR"(DELETE FROM "ImgDB" WHERE "ID" = ?)"_s)
            .Bind(1, taken)
            .Step();
    }
    transaction.Commit();
    return id;
}

void ArchiveTable::Fill(const ArchiveRecord& record, QByteArrayView thumbnail,
                        const std::optional<FiledFiles>& files) {
    store::Transaction transaction(database_);
    store::Statement(database_,
                     uR"(INSERT INTO "ImgDB" ("ImgErstellt", "ImgName", "ImgType", "ImgAblage",
        "ImgTags", "ImgThumb", "ID") VALUES (?, ?, ?, ?, ?, ?, ?)
        ON CONFLICT ("ID") DO UPDATE SET "ImgErstellt" = excluded."ImgErstellt",
        "ImgName" = excluded."ImgName", "ImgType" = excluded."ImgType",
        "ImgAblage" = excluded."ImgAblage", "ImgTags" = excluded."ImgTags",
        "ImgThumb" = excluded."ImgThumb")"_s)
        .Bind(1, record.created.toString(StoredTimeFormat))
        .Bind(2, Cut(record.name, 25))
        .Bind(3, Cut(record.type, 50))
        .Bind(4, Cut(record.folder, 125))
        .Bind(5, record.tags)
        .Bind(6, thumbnail)
        .Bind(7, record.id)
        .Step();
    store::FullTextIndex(database_, TagIndexName).Set(record.id, record.tags);
    if (files) {
        ForgetDeletion(record.id, StoredPath(record.folder, record.name));
        WriteDigest(record.id, files->photo);
    }
    if (files && files->original) {
        ForgetDeletion(record.id, StoredPath(files->original->folder, files->original->name));
        KeepOriginal(database_, record.id, *files->original);
    }
    transaction.Commit();
}

void ArchiveTable::ForgetDeletion(qint64 id, const QString& storedPath) {
    store::Statement(database_, uR"(DELETE FROM "ImgDeleted" WHERE "ID" = ?)"_s).Bind(1, id).Step();
    for (const auto* table : {"ImgRemoval", "ImgDeletedFile"}) {
        store::Statement(database_,
                         uR"(DELETE FROM "%1" WHERE "Path" = ?)"_s.arg(QLatin1StringView(table)))
            .Bind(1, storedPath)
            .Step();
    }
}

void ArchiveTable::SetDigests(const std::vector<std::pair<qint64, FileDigest>>& photos) {
    store::Transaction transaction(database_);
    for (const auto& [id, photo] : photos) {
        WriteDigest(id, photo);
    }
    transaction.Commit();
}

void ArchiveTable::WriteDigest(qint64 id, const FileDigest& photo) {
    store::Statement(database_,
                     uR"(INSERT INTO "ImgChecksum" ("ID", "Bytes", "Sha256") VALUES (?, ?, ?)
        ON CONFLICT ("ID") DO UPDATE SET "Bytes" = excluded."Bytes",
        "Sha256" = excluded."Sha256")"_s)
        .Bind(1, id)
        .Bind(2, photo.bytes)
        .Bind(3, photo.sha256)
        .Step();
}

void ArchiveTable::SetTags(qint64 id, const QString& tags) {
    store::Transaction transaction(database_);
    WriteTags(id, tags);
    transaction.Commit();
}

void ArchiveTable::WriteTags(qint64 id, const QString& tags) {
    const bool exists =
        store::Statement(database_,
                         uR"(UPDATE "ImgDB" SET "ImgTags" = ? WHERE "ID" = ? RETURNING "ID")"_s)
            .Bind(1, tags)
            .Bind(2, id)
            .Step();
    if (exists) {
        store::FullTextIndex(database_, TagIndexName).Set(id, tags);
    }
}

bool ArchiveTable::ReplaceTags(qint64 id, const QString& expected, const QString& tags) {
    store::Transaction transaction(database_);
    // Changes nothing, but from here on nobody else can write the record.
    store::Statement(database_, uR"(UPDATE "ImgDB" SET "ImgMD5" = "ImgMD5" WHERE "ID" = ?)"_s)
        .Bind(1, id)
        .Step();
    const auto record = Read(id);
    if (!record || record->tags != expected) {
        return false;
    }
    WriteTags(id, tags);
    transaction.Commit();
    return true;
}

std::optional<ArchiveRecord> ArchiveTable::Read(qint64 id) const {
    // The thumbnail stands last in its row, so that the bytes before it are read alone.
    store::Statement select(database_,
                            uR"(SELECT "ImgName", "ImgType", "ImgErstellt", "ImgAblage", "ImgTags"
                                FROM "ImgDB" WHERE "ID" = ?)"_s);
    if (!select.Bind(1, id).Step()) {
        return {};
    }
    return ArchiveRecord{.id = id,
                         .name = select.Text(0),
                         .type = select.Text(1),
                         .created = QDateTime::fromString(select.Text(2), StoredTimeFormat),
                         .folder = select.Text(3),
                         .tags = select.Text(4)};
}

QByteArray ArchiveTable::ReadThumbnail(qint64 id) const {
    store::Statement select(database_, uR"(SELECT "ImgThumb" FROM "ImgDB" WHERE "ID" = ?)"_s);
    return select.Bind(1, id).Step() ? select.Blob(0).toByteArray() : QByteArray();
}

std::vector<qint64> ArchiveTable::Ids() const {
    return Filtered(Listing().Ids());
}

std::vector<qint64> ArchiveTable::Find(const QString& text) const {
    return Filtered(Listing().Find(ArchiveSearch(text)));
}

void ArchiveTable::SetFilter(const QString& expression) {
    if (expression.isEmpty()) {
        filter_.reset();
        return;
    }
    store::TextSearch search = store::ParseTextSearch(expression);
    if (search.column.compare("ImgTags"_L1, Qt::CaseInsensitive) != 0) {
        throw store::StoreError(u"Im Feld „%1“ kann nicht gesucht werden."_s.arg(search.column));
    }
    filter_ = std::move(search.text);
}

const ArchiveListing& ArchiveTable::Listing() const {
    const store::Database::State present = database_.PresentState();
    if (!listing_ || present != listed_) {
        listing_.emplace(database_);
        listed_ = present;
    }
    return *listing_;
}

std::vector<qint64> ArchiveTable::Filtered(std::vector<qint64> ids) const {
    if (filter_) {
        const std::vector<qint64> rows =
            store::FullTextIndex(database_, TagIndexName).RowsWith(*filter_);
        std::erase_if(ids,
                      [&](qint64 id) { return !std::binary_search(rows.begin(), rows.end(), id); });
    }
    return ids;
}

}  // namespace kadrona::core
