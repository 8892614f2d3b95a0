#include "core/archive/ArchiveSchema.h"

#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr qint64 MajorVersion = 1;
constexpr qint64 ApplicationId = 0x4b445249;  // "KDRI"

/// SQLite keeps the comment, the table's description, as it stands. Its own order of texts is that
/// of no language.
constexpr QStringView Table =
    uR"(CREATE TABLE IF NOT EXISTS "ImgDB" /* Passbilder */ (
        "ID" INTEGER PRIMARY KEY AUTOINCREMENT,
        "ImgName" VARCHAR(25),
        "ImgType" VARCHAR(50),
        "ImgMD5" VARCHAR(40),
        "ImgErstellt" TIMESTAMP,
        "ImgAblage" VARCHAR(125),
        "ImgTags" MEMO,
        "ImgThumb" GRAPHIC))";

constexpr QStringView NewestFirst =
    uR"(CREATE INDEX IF NOT EXISTS "ImgErstellt_idx" ON "ImgDB" ("ImgErstellt" DESC))";

/// All that a list or a search wants to know, so that neither reads the rows with the thumbnails.
constexpr QStringView Listing =
    uR"(CREATE INDEX IF NOT EXISTS "ImgListing_idx" ON "ImgDB"
        ("ImgErstellt" DESC, "ID" DESC, "ImgName", "ImgType", "ImgTags"))";

qint64 Number(store::Database& database, const QString& query) {
    store::Statement statement(database, query);
    return statement.Step() ? statement.Integer(0) : 0;
}

bool IsComplete(store::Database& database) {
    const qint64 objects = Number(database,
                                  uR"(SELECT count(*) FROM sqlite_schema WHERE name IN
        ('ImgDB', 'ImgErstellt_idx', 'ImgListing_idx', '%1'))"_s.arg(TagIndexName));
    return objects == 4 && Number(database, u"PRAGMA user_version"_s) == MajorVersion;
}

}  // namespace

void RequireKnownVersion(store::Database& database) {
    const qint64 application = Number(database, u"PRAGMA application_id"_s);
    if (application != 0 && application != ApplicationId) {
        throw store::StoreError(
            u"Die Datenbank „%1“ gehört zu einem anderen Programm."_s.arg(database.Path()));
    }
    const qint64 version = Number(database, u"PRAGMA user_version"_s);
    if (version > MajorVersion) {
        throw store::StoreError(
            u"Die Datenbank „%1“ stammt von einer neueren Version des Programms (%2)."_s
                .arg(database.Path())
                .arg(version));
    }
}

void CreateArchive(store::Database& database) {
    if (IsComplete(database)) {
        return;
    }
    QStringList script{Table.toString(), NewestFirst.toString(), Listing.toString()};
    if (!database.TableExists(TagIndexName)) {
        script << store::FullTextIndex::Creation(TagIndexName)
               << uR"(INSERT OR REPLACE INTO "%1" (rowid, "Text")
                      SELECT "ID", "ImgTags" FROM "ImgDB" WHERE "ImgTags" IS NOT NULL)"_s.arg(
                      TagIndexName);
    }
    script << u"PRAGMA application_id = %1"_s.arg(ApplicationId)
           << u"PRAGMA user_version = %1"_s.arg(MajorVersion);
    database.RunScript(script);
}

}  // namespace kadrona::core
