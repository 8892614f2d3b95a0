#include "core/archive/ArchiveSchema.h"

#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr store::SchemaMark Made{.application = 0x4b445249, .version = 1};  // "KDRI"

/// SQLite keeps the comment, the table's description, as it stands. Its own order of texts is that
/// of no language.
QString Creation(const store::Database& database) {
    return uR"(CREATE TABLE IF NOT EXISTS "ImgDB" /* Passbilder */ (
        "ID" %1,
        "ImgName" VARCHAR(25),
        "ImgType" VARCHAR(50),
        "ImgMD5" VARCHAR(40),
        "ImgErstellt" TIMESTAMP,
        "ImgAblage" VARCHAR(125),
        "ImgTags" %2,
        "ImgThumb" %3))"_s.arg(database.ColumnType(store::ColumnKind::AutomaticNumber),
                               database.ColumnType(store::ColumnKind::Memo),
                               database.ColumnType(store::ColumnKind::Graphic));
}

constexpr QStringView NewestFirst =
    uR"(CREATE INDEX IF NOT EXISTS "ImgErstellt_idx" ON "ImgDB" ("ImgErstellt" DESC))";

const store::ListedTable& Listed() {
    static const store::ListedTable table{.name = u"ImgDB"_s,
                                          .description = u"Passbilder"_s,
                                          .index = u"ImgListing_idx"_s,
                                          .keys = {u"ImgErstellt"_s, u"ID"_s},
                                          .columns = {u"ImgName"_s, u"ImgType"_s, u"ImgTags"_s},
                                          .large = u"ImgThumb"_s};
    return table;
}

bool IsComplete(store::Database& database) {
    return database.TableExists(Listed().name) && database.TableExists(TagIndexName) &&
           database.IndexExists(u"ImgErstellt_idx"_s) && database.IndexExists(Listed().index) &&
           database.Mark().version == Made.version;
}

/// What the tags of all records hold, for an index that has just been made.
void FillTagIndex(store::Database& database) {
    store::FullTextIndex index(database, TagIndexName);
    store::Statement select(
        database, uR"(SELECT "ID", "ImgTags" FROM "ImgDB" WHERE "ImgTags" IS NOT NULL)"_s);
    while (select.Step()) {
        index.Set(select.Integer(0), select.Text(1));
    }
}

}  // namespace

void RequireKnownVersion(store::Database& database) {
    const store::SchemaMark mark = database.Mark();
    if (mark.application != 0 && mark.application != Made.application) {
        throw store::StoreError(
            u"Die Datenbank „%1“ gehört zu einem anderen Programm."_s.arg(database.Name()));
    }
    if (mark.version > Made.version) {
        throw store::StoreError(
            u"Die Datenbank „%1“ stammt von einer neueren Version des Programms (%2)."_s
                .arg(database.Name())
                .arg(mark.version));
    }
}

void CreateArchive(store::Database& database) {
    if (IsComplete(database)) {
        return;
    }
    store::Transaction transaction(database);
    database.LockSchema();
    const auto execute = [&](const QStringList& statements) {
        for (const QString& statement : statements) {
            database.Execute(statement);
        }
    };
    execute({Creation(database), NewestFirst.toString()});
    execute(database.Supplements(Listed()));
    if (!database.TableExists(TagIndexName)) {
        execute(store::FullTextIndex(database, TagIndexName).Creation());
        FillTagIndex(database);
    }
    database.SetMark(Made);
    transaction.Commit();
}

}  // namespace kadrona::core
