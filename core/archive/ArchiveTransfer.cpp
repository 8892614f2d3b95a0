#include "core/archive/ArchiveTransfer.h"

#include <QCryptographicHash>
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
constexpr int RecordsAtOnce = 200;

/// The fields beside the number.
const QString Fields =
    uR"("ImgName", "ImgType", "ImgMD5", "ImgErstellt", "ImgAblage", "ImgTags", "ImgThumb")"_s;
constexpr size_t TextCount = 6;
constexpr size_t Tags = 5;
const QString CopyingText = u"Das Archiv wird übertragen …"_s;

struct CopiedRecord {
    qint64 id = 0;
    std::array<std::optional<QString>, TextCount> texts;
    std::optional<QByteArray> thumbnail;
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
                                .arg(RecordsAtOnce));
    select.Bind(1, after);
    std::vector<CopiedRecord> records;
    while (select.Step()) {
        records.push_back(RecordOf(select));
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

void Write(store::Database& target, const CopiedRecord& record) {
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

[[noreturn]] void RefuseStranger(const store::Database& target, qint64 id) {
    throw store::StoreError(
        u"Die Datenbank „%1“ hat unter der Nummer %2 schon ein anderes Bild. Ein Archiv lässt sich "
        u"nur in eine leere Datenbank übertragen, oder in eine, in die es schon einmal übertragen "
        u"wurde."_s.arg(target.Name())
            .arg(id));
}

/// Writes those records that are not there yet; returns how many.
qint64 Copy(store::Database& target, const std::vector<CopiedRecord>& records, qint64 after) {
    store::Transaction transaction(target);
    auto present = ChecksumsBetween(target, after, records.back().id);
    qint64 copied = 0;
    for (const CopiedRecord& record : records) {
        const auto found = present.find(record.id);
        if (found == present.end()) {
            Write(target, record);
            ++copied;
        } else if (found->second != Checksum(record)) {
            RefuseStranger(target, record.id);
        } else {
            present.erase(found);
        }
    }
    if (!present.empty()) {
        RefuseStranger(target, present.begin()->first);
    }
    transaction.Commit();
    return copied;
}

/// Throws where a record is not there as it is in the source.
void Compare(store::Database& target, const std::vector<CopiedRecord>& records, qint64 after) {
    const auto present = ChecksumsBetween(target, after, records.back().id);
    const auto isThere = [&](const CopiedRecord& record) {
        const auto found = present.find(record.id);
        return found != present.end() && found->second == Checksum(record);
    };
    if (present.size() != records.size() || !std::ranges::all_of(records, isThere)) {
        throw store::StoreError(
            u"Die Übertragung ist nicht vollständig: In der Datenbank „%1“ stimmen Bilder bis zur "
            u"Nummer %2 nicht mit dem Archiv überein. Sie kann wiederholt werden."_s
                .arg(target.Name())
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

void CopyKeeping(store::Database& source, store::Database& target,
                 const platform::Progress& progress) {
    if (!HasKeeping(source)) {
        return;
    }
    CreateKeeping(target);
    for (const KeepingColumns& table : AllKeepingColumns()) {
        store::Statement select(source, uR"(SELECT "%1" FROM "%2")"_s.arg(
                                            table.columns.join(uR"(", ")"_s), table.table));
        for (bool more = select.Step(); more;) {
            progress(CopyingText, 0, 0);
            store::Transaction transaction(target);
            for (int i = 0; i < RecordsAtOnce && more; ++i) {
                CopyRow(target, table, select);
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

}  // namespace

TransferResult TransferArchive(store::Database& source, store::Database& target,
                               const platform::Progress& progress) {
    RequireKnownVersion(target);
    CreateArchive(target);
    {
        // First: who files there meanwhile must not take a number of the source's.
        store::Transaction transaction(target);
        target.RaiseLastNumber(u"ImgDB"_s, u"ID"_s, source.LastNumber(u"ImgDB"_s, u"ID"_s));
        transaction.Commit();
    }
    TransferResult result{.records = CountRecords(source), .copied = 0};
    ForEachBatch(
        source, CopyingText, result.records, progress,
        [&](const auto& records, qint64 after) { result.copied += Copy(target, records, after); });
    CopyKeeping(source, target, progress);
    ForEachBatch(source, u"Die Bilder werden verglichen …"_s, result.records, progress,
                 [&](const auto& records, qint64 after) { Compare(target, records, after); });
    return result;
}

}  // namespace kadrona::core
