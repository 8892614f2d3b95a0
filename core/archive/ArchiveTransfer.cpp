#include "core/archive/ArchiveTransfer.h"

#include <QCryptographicHash>
#include <QSet>
#include <QSysInfo>
#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <vector>

#include "core/archive/ArchiveSchema.h"
#include "core/archive/KeepingSchema.h"
#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// What one transaction takes, and a transfer that is cut off loses.
constexpr int CopiedAtOnce = 200;
/// A value may have 16 MB; a batch ends with the record that reaches this.
constexpr qsizetype CopiedBytesAtOnce = qsizetype{16} << 20;

/// The fields beside the number.
const QString Fields =
    uR"("ImgName", "ImgType", "ImgMD5", "ImgErstellt", "ImgAblage", "ImgTags", "ImgThumb")"_s;
constexpr size_t TextCount = 6;
constexpr size_t Tags = 5;
constexpr std::array RecordTables{"ImgChecksum", "ImgOriginal", "ImgKeepUntil"};
/// Of the target's values: the source of a transfer that is not finished, and its last number.
const QString Unfinished = u"Transfer"_s;
const QString CopyingText = u"Das Archiv wird übertragen …"_s;

struct CopiedRecord {
    qint64 id = 0;
    std::array<std::optional<QString>, TextCount> texts;
    std::optional<QByteArray> thumbnail;
};

/// The database that gets the records, and what may be changed in it.
struct Target {
    store::Database& database;
    /// Up to this number all records are those of a transfer from the same source that was not
    /// finished.
    qint64 replaced = 0;
    QSet<qint64> deleted;
    /// Those of the deleted ones that the source has.
    QSet<qint64> leftOut;
};

/// Texts have no character 0: a server cannot keep it.
CopiedRecord RecordOf(const store::Statement& row) {
    CopiedRecord record{.id = row.Integer(0), .texts = {}, .thumbnail = {}};
    for (size_t i = 0; i < TextCount; ++i) {
        const int column = static_cast<int>(i) + 1;
        if (!row.IsNull(column)) {
            record.texts[i] = row.Text(column).remove(QChar::Null);
        }
    }
    const int last = static_cast<int>(TextCount) + 1;
    if (!row.IsNull(last)) {
        record.thumbnail = row.Blob(last).toByteArray();
    }
    return record;
}

/// In memory, about.
qsizetype SizeOf(const CopiedRecord& record) {
    qsizetype bytes = record.thumbnail ? record.thumbnail->size() : 0;
    for (const auto& text : record.texts) {
        bytes += text ? text->size() * qsizetype{sizeof(QChar)} : 0;
    }
    return bytes;
}

QByteArray Checksum(const CopiedRecord& record) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const auto add = [&](const std::optional<QByteArray>& value) {
        hash.addData(value ? QByteArray::number(value->size()) + ':' + *value : QByteArray("-"));
    };
    for (const auto& text : record.texts) {
        add(text ? std::optional(text->toUtf8()) : std::nullopt);
    }
    add(record.thumbnail);
    return hash.result();
}

/// The records after a number, in the order of their numbers.
std::vector<CopiedRecord> NextRecords(store::Database& database, qint64 after) {
    store::Statement select(database,
                            uR"(SELECT "ID", %1 FROM "ImgDB" WHERE "ID" > ?
                                          ORDER BY "ID" LIMIT %2)"_s.arg(Fields)
                                .arg(CopiedAtOnce));
    select.Bind(1, after);
    std::vector<CopiedRecord> records;
    qsizetype bytes = 0;
    while (bytes < CopiedBytesAtOnce && select.Step()) {
        bytes += SizeOf(records.emplace_back(RecordOf(select)));
    }
    return records;
}

std::map<qint64, QByteArray> ChecksumsBetween(store::Database& database, qint64 after,
                                              qint64 last) {
    store::Statement select(database,
                            uR"(SELECT "ID", %1 FROM "ImgDB"
                                          WHERE "ID" > ? AND "ID" <= ?)"_s.arg(Fields));
    select.Bind(1, after).Bind(2, last);
    std::map<qint64, QByteArray> checksums;
    while (select.Step()) {
        checksums.emplace(select.Integer(0), Checksum(RecordOf(select)));
    }
    return checksums;
}

void WriteRecord(store::Database& target, const CopiedRecord& record) {
    store::Statement insert(
        target, uR"(INSERT INTO "ImgDB" ("ID", %1) VALUES (?, ?, ?, ?, ?, ?, ?, ?))"_s.arg(Fields));
    insert.Bind(1, record.id);
    for (size_t i = 0; i < TextCount; ++i) {
        if (record.texts[i]) {
            insert.Bind(static_cast<int>(i) + 2, *record.texts[i]);
        }
    }
    if (record.thumbnail) {
        insert.Bind(static_cast<int>(TextCount) + 2, QByteArrayView(*record.thumbnail));
    }
    insert.Step();
    if (record.texts[Tags]) {
        store::FullTextIndex(target, TagIndexName).Set(record.id, *record.texts[Tags]);
    }
}

void Write(store::Database& target, const CopiedRecord& record) {
    try {
        WriteRecord(target, record);
    } catch (const store::ConnectionLost&) {
        throw;
    } catch (const store::StoreError& error) {
        throw store::StoreError(error.Text() +
                                u" Es geht um den Datensatz mit der Nummer %1."_s.arg(record.id));
    }
}

void Remove(store::Database& target, qint64 id) {
    for (const char* table : RecordTables) {
        store::Statement(target,
                         uR"(DELETE FROM "%1" WHERE "ID" = ?)"_s.arg(QLatin1StringView(table)))
            .Bind(1, id)
            .Step();
    }
    store::Statement(target, uR"(DELETE FROM "ImgDB" WHERE "ID" = ?)"_s).Bind(1, id).Step();
    store::FullTextIndex(target, TagIndexName).Remove(id);
}

[[noreturn]] void RefuseStranger(const store::Database& target, qint64 id) {
    throw store::StoreError(
        u"Die Datenbank „%1“ hat unter der Nummer %2 schon ein anderes Bild. Ein Archiv lässt sich "
        u"nur in eine leere Datenbank übertragen, oder in eine, in die es schon einmal übertragen "
        u"wurde."_s.arg(target.Name())
            .arg(id));
}

/// Takes out a record that is not the source's, where it may.
void RemoveStranger(const Target& target, qint64 id) {
    if (id > target.replaced) {
        RefuseStranger(target.database, id);
    }
    Remove(target.database, id);
}

/// Writes those records that are not there as they are; returns how many.
qint64 Copy(Target& target, const std::vector<CopiedRecord>& records, qint64 after) {
    store::Transaction transaction(target.database);
    auto present = ChecksumsBetween(target.database, after, records.back().id);
    qint64 copied = 0;
    for (const CopiedRecord& record : records) {
        const auto found = present.find(record.id);
        if (found == present.end() && target.deleted.contains(record.id)) {
            target.leftOut.insert(record.id);
            continue;
        }
        const bool isThere = found != present.end() && found->second == Checksum(record);
        if (!isThere) {
            if (found != present.end()) {
                RemoveStranger(target, record.id);
            }
            Write(target.database, record);
            ++copied;
        }
        present.erase(record.id);
    }
    for (const auto& [id, checksum] : present) {
        RemoveStranger(target, id);
    }
    transaction.Commit();
    return copied;
}

/// What the source had after its last record.
void RemoveRest(const Target& target, qint64 after) {
    store::Transaction transaction(target.database);
    for (const auto& [id, checksum] : ChecksumsBetween(target.database, after, target.replaced)) {
        Remove(target.database, id);
    }
    transaction.Commit();
}

/// Throws where a record is not there as it is in the source.
void Compare(const Target& target, const std::vector<CopiedRecord>& records, qint64 after) {
    const auto present = ChecksumsBetween(target.database, after, records.back().id);
    size_t expected = 0;
    const auto isRight = [&](const CopiedRecord& record) {
        const auto found = present.find(record.id);
        expected += found != present.end() ? 1 : 0;
        return found == present.end() ? target.leftOut.contains(record.id)
                                      : found->second == Checksum(record);
    };
    if (!std::ranges::all_of(records, isRight) || present.size() != expected) {
        throw store::StoreError(
            u"Die Übertragung ist nicht vollständig: In der Datenbank „%1“ stimmen Bilder bis zur "
            u"Nummer %2 nicht mit dem Archiv überein. Sie kann wiederholt werden."_s
                .arg(target.database.Name())
                .arg(records.back().id));
    }
}

/// Goes through the source's records, a few at a time.
void ForEachBatch(store::Database& source, const QString& what, qint64 all,
                  const platform::Progress& progress,
                  const std::function<void(const std::vector<CopiedRecord>&, qint64 after)>& use) {
    qint64 after = std::numeric_limits<qint64>::min();
    qint64 done = 0;
    progress(what, 0, all);
    for (auto records = NextRecords(source, after); !records.empty();
         records = NextRecords(source, after)) {
        use(records, after);
        after = records.back().id;
        done += static_cast<qint64>(records.size());
        progress(what, done, all);
    }
}

/// A row of what is kept beside the records; one that is there already stays as it is.
void CopyRow(store::Database& target, const KeepingColumns& table, const store::Statement& row) {
    const QString places = QStringList(table.columns.size(), u"?"_s).join(u", "_s);
    store::Statement insert(target,
                            uR"(INSERT INTO "%1" ("%2") VALUES (%3) ON CONFLICT DO NOTHING)"_s.arg(
                                table.table, table.columns.join(uR"(", ")"_s), places));
    for (int column = 0; column < table.columns.size(); ++column) {
        insert.Bind(column + 1, row.Text(column));
    }
    insert.Step();
}

/// Checksums and originals of an unfinished transfer may be other ones by now.
void ForgetFiles(const Target& target) {
    store::Transaction transaction(target.database);
    for (const char* table : {"ImgChecksum", "ImgOriginal"}) {
        store::Statement(target.database,
                         uR"(DELETE FROM "%1" WHERE "ID" <= ?)"_s.arg(QLatin1StringView(table)))
            .Bind(1, target.replaced)
            .Step();
    }
    transaction.Commit();
}

/// Whether a row stays in the source: one of a record that does, or who transfers.
bool IsLeftOut(const Target& target, const KeepingColumns& table, const store::Statement& row) {
    const bool ofRecord = std::ranges::any_of(
        RecordTables, [&](const char* name) { return table.table == QLatin1StringView(name); });
    const auto id = static_cast<int>(table.columns.indexOf(u"ID"_s));
    const auto name = static_cast<int>(table.columns.indexOf(u"Name"_s));
    return ofRecord ? target.leftOut.contains(row.Integer(id))
                    : id < 0 && name >= 0 && row.Text(name) == Unfinished;
}

void CopyKeeping(store::Database& source, const Target& target,
                 const platform::Progress& progress) {
    ForgetFiles(target);
    for (const KeepingColumns& table : AllKeepingColumns()) {
        if (!source.TableExists(table.table)) {
            continue;  // of an older version
        }
        store::Statement select(source, uR"(SELECT "%1" FROM "%2")"_s.arg(
                                            table.columns.join(uR"(", ")"_s), table.table));
        for (bool more = select.Step(); more;) {
            progress(CopyingText, 0, 0);
            store::Transaction transaction(target.database);
            for (int i = 0; i < CopiedAtOnce && more; ++i) {
                if (!IsLeftOut(target, table, select)) {
                    CopyRow(target.database, table, select);
                }
                more = select.Step();
            }
            transaction.Commit();
        }
    }
}

qint64 CountRecords(store::Database& database) {
    store::Statement count(database, uR"(SELECT count(*) FROM "ImgDB")"_s);
    count.Step();
    return count.Integer(0);
}

/// Tells a source from others, without a change in it.
QString Fingerprint(const store::Database& source) {
    return QString::fromLatin1(
        QCryptographicHash::hash(QSysInfo::machineUniqueId() + ' ' + source.Name().toUtf8(),
                                 QCryptographicHash::Sha256)
            .toHex());
}

/// The last number of an unfinished transfer from the source; 0 where there is none.
qint64 UnfinishedUpTo(store::Database& target, const QString& source) {
    store::Statement select(target, uR"(SELECT "Value" FROM "ImgKeeping" WHERE "Name" = ?)"_s);
    const QString value = select.Bind(1, Unfinished).Step() ? select.Text(0) : QString();
    return value.section(u' ', 0, 0) == source ? value.section(u' ', 1).toLongLong() : 0;
}

void SetUnfinished(store::Database& target, const QString& value) {
    store::Statement(target, uR"(DELETE FROM "ImgKeeping" WHERE "Name" = ?)"_s)
        .Bind(1, Unfinished)
        .Step();
    if (!value.isEmpty()) {
        store::Statement(target, uR"(INSERT INTO "ImgKeeping" ("Name", "Value") VALUES (?, ?))"_s)
            .Bind(1, Unfinished)
            .Bind(2, value)
            .Step();
    }
}

Target Prepared(store::Database& source, store::Database& target) {
    RequireKnownVersion(target);
    CreateArchive(target);
    CreateKeeping(target);
    const QString fingerprint = Fingerprint(source);
    const qint64 last = source.LastNumber(u"ImgDB"_s, u"ID"_s);
    store::Transaction transaction(target);
    // First: who files there meanwhile must not take a number of the source's.
    target.RaiseLastNumber(u"ImgDB"_s, u"ID"_s, last);
    Target prepared{.database = target,
                    .replaced = UnfinishedUpTo(target, fingerprint),
                    .deleted = {},
                    .leftOut = {}};
    store::Statement others(target,
                            uR"(SELECT "ID" FROM "ImgDB" WHERE "ID" > ? AND "ID" <= ? LIMIT 1)"_s);
    if (!others.Bind(1, prepared.replaced).Bind(2, last).Step()) {
        SetUnfinished(target, u"%1 %2"_s.arg(fingerprint).arg(last));
    }
    transaction.Commit();
    store::Statement deleted(target, uR"(SELECT "ID" FROM "ImgDeleted")"_s);
    while (deleted.Step()) {
        prepared.deleted.insert(deleted.Integer(0));
    }
    return prepared;
}

}  // namespace

TransferResult TransferArchive(store::Database& source, store::Database& database,
                               const platform::Progress& progress) {
    Target target = Prepared(source, database);
    TransferResult result{.records = CountRecords(source), .copied = 0, .leftOut = 0};
    qint64 last = 0;
    ForEachBatch(source, CopyingText, result.records, progress,
                 [&](const auto& records, qint64 after) {
                     result.copied += Copy(target, records, after);
                     last = records.back().id;
                 });
    RemoveRest(target, last);
    CopyKeeping(source, target, progress);
    ForEachBatch(source, u"Die Bilder werden verglichen …"_s, result.records, progress,
                 [&](const auto& records, qint64 after) { Compare(target, records, after); });
    result.leftOut = target.leftOut.size();
    store::Transaction transaction(database);
    SetUnfinished(database, {});
    transaction.Commit();
    return result;
}

}  // namespace kadrona::core
