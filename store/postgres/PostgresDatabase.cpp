#include "store/postgres/PostgresDatabase.h"

#include <libpq-fe.h>

#include <QCryptographicHash>

#include "platform/HarmlessText.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Words.h"
#include "store/postgres/PostgresStatement.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

namespace {

/// The table with the mark, and the channel on which changes are announced.
const QString MarkTable = u"KadronaMark"_s;
constexpr const char* Channel = "kadrona_changes";

/// A word as the index keeps it: an entry has no room for a long one.
QByteArray IndexedWord(const QByteArray& word) {
    constexpr qsizetype Longest = 400;
    return word.size() <= Longest
               ? word
               : "=" + QCryptographicHash::hash(word, QCryptographicHash::Sha256).toHex();
}

/// The words in the server's notation of an array. None of them has a quote or a backslash.
QString WordArray(const std::vector<QByteArray>& words) {
    QByteArray text;
    for (const QByteArray& word : words) {
        text += (text.isEmpty() ? "\"" : ",\"") + IndexedWord(word) + '"';
    }
    return u'{' + QString::fromUtf8(text) + u'}';
}

/// A function or operator where the server looks for those of our statements, whose owner has no
/// right to act for us: it would run with our rights where it fits better than the server's own.
const QString ForeignCode =
    uR"(
    SELECT found.name FROM (
        SELECT proname AS name, pronamespace AS place, proowner AS owner FROM pg_catalog.pg_proc
        WHERE prorettype <> 'pg_catalog.trigger'::pg_catalog.regtype::oid
        UNION ALL SELECT oprname, oprnamespace, oprowner FROM pg_catalog.pg_operator) found
    JOIN pg_catalog.pg_namespace place ON place.oid = found.place
    JOIN pg_catalog.pg_roles owner ON owner.oid = found.owner
    JOIN pg_catalog.pg_roles self ON self.rolname = CURRENT_USER
    JOIN pg_catalog.pg_database here ON here.datname = pg_catalog.current_database()
    WHERE place.nspname = ANY (pg_catalog.current_schemas(false)) AND NOT owner.rolsuper
      AND owner.oid <> here.datdba
      AND (self.rolsuper OR NOT pg_catalog.pg_has_role(owner.oid, 'MEMBER')) LIMIT 1)"_s;

}  // namespace

PostgresDatabase::PostgresDatabase(const ServerAddress& address, const ServerPatience& patience)
    : Database(u"%1 auf %2"_s.arg(address.database, address.host)), link_(address, patience) {
    link_.Run(QByteArray("LISTEN ") + Channel);
    if (Statement foreign(*this, ForeignCode); foreign.Step()) {
        throw StoreError(
            u"In der Datenbank „%1“ liegt eine Funktion eines anderen Benutzers („%2“), die mit "
            u"Ihren Rechten liefe. Der Verwalter des Servers muss sie entfernen."_s.arg(
                Name(), platform::HarmlessLine(foreign.Text(0))));
    }
}

std::unique_ptr<PreparedStatement> PostgresDatabase::Prepare(const QString& sql) {
    return std::make_unique<PostgresStatement>(link_, sql);
}

void PostgresDatabase::Begin() {
    link_.Run("BEGIN");
}

void PostgresDatabase::BeginSnapshot() {
    link_.Run("BEGIN ISOLATION LEVEL REPEATABLE READ, READ ONLY");
}

void PostgresDatabase::Commit() {
    // Of a transaction in which something has failed the server says so in this way alone.
    if (QByteArrayView(PQcmdStatus(link_.Run("COMMIT").get())) != "COMMIT") {
        throw StoreError(
            u"Die Änderung in der Datenbank „%1“ wurde nicht ausgeführt."_s.arg(Name()));
    }
}

void PostgresDatabase::RollBack() noexcept {
    try {
        if (link_.InTransaction()) {
            link_.Run("ROLLBACK");
        }
    } catch (...) {
        // The server itself takes back what was not committed when the connection ends.
        link_.Close();
    }
}

bool PostgresDatabase::Has(const QString& kinds, const QString& name) {
    return Statement(*this,
                     uR"(SELECT 1 FROM pg_class JOIN pg_namespace n ON n.oid = relnamespace
                    WHERE nspname = current_schema() AND relkind IN (%1)
                      AND lower(relname::text) = lower(?))"_s.arg(kinds))
        .Bind(1, name)
        .Step();
}

bool PostgresDatabase::TableExists(const QString& name) {
    if (link_.HasFailed()) {
        knownTables_.clear();
    }
    if (knownTables_.contains(name)) {
        return true;
    }
    const bool exists = Has(u"'r'"_s, name);
    if (exists) {
        knownTables_.insert(name);
    }
    return exists;
}

bool PostgresDatabase::IndexExists(const QString& name) {
    return Has(u"'i'"_s, name);
}

Database::State PostgresDatabase::PresentState() {
    const qint64 others = link_.OthersNotices();
    return {link_.OwnChanges(), others};
}

SchemaMark PostgresDatabase::Mark() {
    if (!TableExists(MarkTable)) {
        return {TableExists(u"ImgDB"_s) ? -1 : 0, 0};
    }
    Statement mark(*this, uR"(SELECT "Application", "Version" FROM "%1")"_s.arg(MarkTable));
    return mark.Step() ? SchemaMark{mark.Integer(0), mark.Integer(1)} : SchemaMark{};
}

void PostgresDatabase::SetMark(const SchemaMark& mark) {
    Execute(uR"(CREATE TABLE IF NOT EXISTS "%1" ("Application" bigint, "Version" bigint))"_s.arg(
        MarkTable));
    Execute(uR"(DELETE FROM "%1")"_s.arg(MarkTable));
    Statement(*this, uR"(INSERT INTO "%1" VALUES (?, ?))"_s.arg(MarkTable))
        .Bind(1, mark.application)
        .Bind(2, mark.version)
        .Step();
}

void PostgresDatabase::LockSchema() {
    constexpr int Lock = 0x4b445249;
    Execute(u"SELECT pg_advisory_xact_lock(%1)"_s.arg(Lock));
}

QString PostgresDatabase::ColumnType(ColumnKind kind) const {
    switch (kind) {
        case ColumnKind::AutomaticNumber:
            return u"bigint GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY"_s;
        case ColumnKind::Memo:
            return u"text"_s;
        case ColumnKind::Graphic:
            break;
    }
    return u"bytea"_s;
}

QStringList PostgresDatabase::Supplements(const ListedTable& table) const {
    QStringList keys;
    for (const QString& key : table.keys) {
        keys << uR"("%1" DESC NULLS LAST)"_s.arg(key);
    }
    // The bytes go out of the row, whatever its length, and are no shorter when compressed. The
    // texts stay in it: to fetch each from where the bytes are takes a list twenty times as long.
    QStringList storage{uR"(ALTER COLUMN "%1" SET STORAGE EXTERNAL)"_s.arg(table.large)};
    for (const QString& column : table.columns) {
        storage << uR"(ALTER COLUMN "%1" SET STORAGE MAIN)"_s.arg(column);
    }
    return {uR"(CREATE INDEX IF NOT EXISTS "%1" ON "%2" (%3))"_s.arg(table.index, table.name,
                                                                     keys.join(u", "_s)),
            uR"(COMMENT ON TABLE "%1" IS '%2')"_s.arg(table.name, table.description),
            uR"(ALTER TABLE "%1" SET (toast_tuple_target = 128), %2)"_s.arg(table.name,
                                                                            storage.join(u", "_s)),
            uR"(CREATE OR REPLACE FUNCTION "KadronaNotice"() RETURNS trigger LANGUAGE plpgsql AS
            $$ BEGIN PERFORM pg_notify('%1', ''); RETURN NULL; END $$)"_s.arg(
                QLatin1StringView(Channel)),
            uR"(DROP TRIGGER IF EXISTS "KadronaNotice" ON "%1")"_s.arg(table.name),
            uR"(CREATE TRIGGER "KadronaNotice" AFTER INSERT OR UPDATE OR DELETE ON "%1"
            FOR EACH STATEMENT EXECUTE FUNCTION "KadronaNotice"())"_s.arg(table.name)};
}

qint64 PostgresDatabase::LastNumber(const QString& table, const QString& column) {
    Statement last(*this,
                   u"SELECT coalesce(pg_sequence_last_value("
                   u"pg_get_serial_sequence(?, ?)::regclass), 0)"_s);
    return last.Bind(1, u'"' + table + u'"').Bind(2, column).Step() ? last.Integer(0) : 0;
}

void PostgresDatabase::RaiseLastNumber(const QString& table, const QString& column, qint64 number) {
    if (number <= LastNumber(table, column)) {
        return;
    }
    Statement(*this, u"SELECT setval(pg_get_serial_sequence(?, ?), ?)"_s)
        .Bind(1, u'"' + table + u'"')
        .Bind(2, column)
        .Bind(3, number)
        .Step();
}

void PostgresDatabase::Compact(const QString& /*fullTextIndex*/,
                               const platform::Progress& progress) {
    const auto tick = [&] { progress(u"Die Datenbank wird aufgeräumt …"_s, 0, 0); };
    tick();
    link_.RunWatched("VACUUM", tick);
}

QStringList PostgresDatabase::FullTextCreation(const QString& index) const {
    return {
        uR"(CREATE TABLE IF NOT EXISTS "%1" (rowid bigint PRIMARY KEY, "Words" text[] NOT NULL))"_s
            .arg(index),
        uR"(CREATE INDEX IF NOT EXISTS "%1_words" ON "%1" USING gin ("Words"))"_s.arg(index)};
}

void PostgresDatabase::SetFullText(const QString& index, qint64 row, const QString& text) {
    const std::vector<QByteArray> words = DistinctWordsOf(text.toUtf8());
    Statement(*this,
              uR"(INSERT INTO "%1" (rowid, "Words") VALUES (?, ?)
                         ON CONFLICT (rowid) DO UPDATE SET "Words" = excluded."Words")"_s.arg(
                  index))
        .Bind(1, row)
        .Bind(2, WordArray(words))
        .Step();
}

std::vector<qint64> PostgresDatabase::RowsWith(const QString& index,
                                               const std::vector<QByteArray>& words) {
    Statement select(*this,
                     uR"(SELECT rowid FROM "%1" WHERE "Words" @> ? ORDER BY rowid)"_s.arg(index));
    select.Bind(1, WordArray(words));
    std::vector<qint64> rows;
    while (select.Step()) {
        rows.push_back(select.Integer(0));
    }
    return rows;
}

}  // namespace kadrona::store
