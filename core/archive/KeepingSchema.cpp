#include "core/archive/KeepingSchema.h"

#include <QRegularExpression>
#include <QUuid>
#include <array>

#include "store/Statement.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

struct KeepingTable {
    QLatin1StringView name;
    QLatin1StringView fields;
};

constexpr std::array KeepingTables{
    KeepingTable{
        "ImgChecksum"_L1,
        R"("ID" BIGINT PRIMARY KEY, "Bytes" BIGINT NOT NULL, "Sha256" VARCHAR(64) NOT NULL)"_L1},
    KeepingTable{"ImgOriginal"_L1,
                 R"("ID" BIGINT PRIMARY KEY, "Folder" VARCHAR(125) NOT NULL,
                    "Name" VARCHAR(125) NOT NULL, "Bytes" BIGINT NOT NULL,
                    "Sha256" VARCHAR(64) NOT NULL, "PhotoWidth" BIGINT NOT NULL,
                    "PhotoHeight" BIGINT NOT NULL, "CutLeft" BIGINT NOT NULL,
                    "CutTop" BIGINT NOT NULL, "CutWidth" BIGINT NOT NULL,
                    "CutHeight" BIGINT NOT NULL, "Changes" VARCHAR(250) NOT NULL)"_L1},
    KeepingTable{"ImgRemoval"_L1, R"("Path" VARCHAR(250) PRIMARY KEY, "ID" BIGINT NOT NULL)"_L1},
    KeepingTable{"ImgDeleted"_L1, R"("ID" BIGINT PRIMARY KEY, "Deleted" VARCHAR(19) NOT NULL)"_L1},
    KeepingTable{"ImgKeepUntil"_L1, R"("ID" BIGINT PRIMARY KEY, "Until" VARCHAR(10) NOT NULL)"_L1},
    KeepingTable{"ImgKeeping"_L1,
                 R"("Name" VARCHAR(50) PRIMARY KEY, "Value" VARCHAR(250) NOT NULL)"_L1},
    KeepingTable{"ImgDeletedFile"_L1,
                 R"("Path" VARCHAR(255) PRIMARY KEY, "ID" BIGINT NOT NULL)"_L1},
};

}  // namespace

std::vector<KeepingColumns> AllKeepingColumns() {
    static const QRegularExpression name(u"\"(\\w+)\""_s);
    std::vector<KeepingColumns> all;
    for (const KeepingTable& table : KeepingTables) {
        KeepingColumns known{.table = table.name, .columns = {}};
        for (const auto& match : name.globalMatch(table.fields)) {
            known.columns.append(match.captured(1));
        }
        all.push_back(std::move(known));
    }
    return all;
}

/// In one transaction, so that the last one stands for all.
void CreateKeeping(store::Database& database) {
    if (database.TableExists(KeepingTables.back().name)) {
        return;
    }
    store::Transaction transaction(database);
    database.LockSchema();
    for (const KeepingTable& table : KeepingTables) {
        database.Execute(
            uR"(CREATE TABLE IF NOT EXISTS "%1" (%2))"_s.arg(table.name, table.fields));
    }
    transaction.Commit();
}

QString ArchiveIdentity(store::Database& database) {
    CreateKeeping(database);
    store::Statement(
        database,
        uR"(INSERT INTO "ImgKeeping" ("Name", "Value") VALUES ('Identity', ?) ON CONFLICT DO NOTHING)"_s)
        .Bind(1, QUuid::createUuid().toString(QUuid::WithoutBraces))
        .Step();
    store::Statement select(database,
                            uR"(SELECT "Value" FROM "ImgKeeping" WHERE "Name" = 'Identity')"_s);
    select.Step();
    return select.Text(0);
}

}  // namespace kadrona::core
