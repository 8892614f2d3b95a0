#include "store/sqlite/SqliteDatabase.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <cerrno>

#include "platform/Links.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/sqlite/EngineFiles.h"
#include "store/sqlite/SqliteReason.h"
#include "store/sqlite/SqliteStatement.h"
#include "store/sqlite/WordTokenizer.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView FileName = u"KDRImageBase.db";

/// Far more than the program writes, bytes. SQLite's own billion would be in memory several times.
constexpr int LongestValue = 16 << 20;

/// A database file can carry SQL of its own (views, triggers); keep it from harmful functions and
/// our own SQL from the file's inner structures. A name in double quotes that is no column is an
/// error, not a text.
void Harden(sqlite3* handle) {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
}

/// Deleted names must not stay readable in the file, nor the space that they took be lost: a new
/// file is laid out so that it can be handed back bit by bit. Neither changes an older file.
void ForgetWhatIsDeleted(sqlite3* handle) {
    sqlite3_exec(handle, "PRAGMA secure_delete = ON; PRAGMA auto_vacuum = INCREMENTAL", nullptr,
                 nullptr, nullptr);
}

/// Another program may have given the file a log of changes that programs share in memory, which
/// the engine cannot read here. What is in it goes into the file where no other program uses it.
void WriteChangeLogBack(sqlite3* handle, const QString& path) {
    constexpr qsizetype VersionsAt = 18;  // of those that may write and read (SQLite file format)
    constexpr char Logged = 2;
    QFile file(path);
    const QByteArray head = file.open(QFile::ReadOnly) ? file.read(VersionsAt + 2) : QByteArray();
    if (head.size() == VersionsAt + 2 && (head.back() == Logged || head.at(VersionsAt) == Logged)) {
        sqlite3_exec(handle,
                     "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE; "
                     "PRAGMA locking_mode = NORMAL",
                     nullptr, nullptr, nullptr);
    }
}

/// What a foreign file can have calculated whenever a table is read or written, as large and as
/// often as it likes. No archive has any. Empty where there is none.
QString ForeignCalculation(sqlite3* handle) {
    QString found;
    const auto take = [](void* text, int /*columns*/, char** values, char** /*names*/) {
        *static_cast<QString*>(text) = QString::fromUtf8(values[0]);
        return 0;
    };
    sqlite3_exec(
        handle,
        "SELECT name FROM sqlite_schema WHERE type = 'trigger' UNION ALL "
        "SELECT t.name || '.' || c.name FROM sqlite_schema t, pragma_table_xinfo(t.name) c "
        "WHERE t.type = 'table' AND c.hidden IN (2, 3) LIMIT 1",
        take, &found, nullptr);
    return found.isEmpty() ? QString()
                           : u"In ihr steht „%1“, was fremde Anweisungen ausführt"_s.arg(found);
}

/// Sees to it that there is a file, an empty one where there was none. SQLite itself would give it
/// the permissions that the mask leaves, and would wait at a pipe. Returns why there is none; empty
/// where there is one.
QString MakeFile(const QString& path) {
    const int handle = platform::CreateNewFile(path);
    if (handle >= 0) {
        close(handle);
        return {};
    }
    struct stat existing {};
    if (errno != EEXIST || lstat(QFile::encodeName(path).constData(), &existing) != 0) {
        return platform::SystemReason(errno);
    }
    if (S_ISLNK(existing.st_mode)) {
        return u"Die Datei ist eine Verknüpfung"_s;
    }
    return S_ISREG(existing.st_mode) ? QString() : u"Es ist keine gewöhnliche Datei"_s;
}

/// What lies where the engine keeps its journals and is no file: it would only say that it cannot
/// open the database. Empty where nothing stands in the way.
QString JournalObstacle(const QString& file) {
    for (const QString& ending : {u"-journal"_s, u"-wal"_s, u"-shm"_s}) {
        const QString path = file + ending;
        struct stat status {};
        if (lstat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISREG(status.st_mode)) {
            return u"Neben ihr liegt „%1“, und das ist %2"_s.arg(
                path, S_ISLNK(status.st_mode)    ? u"eine Verknüpfung"
                      : S_ISDIR(status.st_mode)  ? u"ein Ordner"
                      : S_ISFIFO(status.st_mode) ? u"eine benannte Pipe"
                                                 : u"keine gewöhnliche Datei");
        }
    }
    return {};
}

}  // namespace

void SqliteDatabase::Closer::operator()(sqlite3* handle) const {
    sqlite3_close_v2(handle);
}

SqliteDatabase::SqliteDatabase(const QString& folder, std::chrono::milliseconds patience,
                               std::chrono::milliseconds longestWork)
    : Database(platform::JoinPath(folder, FileName)), patience_(patience), limit_(longestWork) {
    const auto check = [this](const QString& reason) {
        if (!reason.isEmpty()) {
            throw StoreError(
                u"Die Datenbank „%1“ konnte nicht geöffnet werden: %2."_s.arg(Name(), reason));
        }
    };
    const auto [realFolder, refusal] = platform::FollowLinks(folder, platform::Links::Own);
    check(refusal);
    const QString file = platform::JoinPath(realFolder, FileName);
    check(MakeFile(file));
    check(JournalObstacle(file));

    [[maybe_unused]] static const bool isBounded = (BoundEngineFiles(), true);
    sqlite3* handle = nullptr;
    int result = sqlite3_open_v2(file.toUtf8().constData(), &handle,
                                 SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW,
                                 nullptr);
    handle_.reset(handle);
    WorkLimit::Work work;
    const WorkLimit::Step step(limit_, work);
    if (result == SQLITE_OK) {
        AllowFilesOf(handle);
        limit_.Attach(handle);
        sqlite3_extended_result_codes(handle, 1);
        // Whoever starts while another program recovers or writes must not be without it for good.
        WaitUpTo(OpeningPatience);
        Harden(handle);
        sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, LongestValue);
        WriteChangeLogBack(handle, file);
        ForgetWhatIsDeleted(handle);
        result = RegisterWordTokenizer(handle);
    }
    if (result == SQLITE_OK) {
        // The file is read only now: without this, garbage would pass for a database.
        result = sqlite3_exec(handle, "SELECT 1 FROM sqlite_schema", nullptr, nullptr, nullptr);
        WaitUpTo(ReadingPatience);
    }
    check(result == SQLITE_OK ? ForeignCalculation(handle) : SqliteReason(handle, result));
}

void SqliteDatabase::WaitUpTo(std::chrono::milliseconds patience) {
    sqlite3_busy_timeout(handle_.get(), static_cast<int>(std::min(patience, patience_).count()));
}

std::unique_ptr<PreparedStatement> SqliteDatabase::Prepare(const QString& sql) {
    return std::make_unique<SqliteStatement>(handle_.get(), limit_, Name(), sql);
}

void SqliteDatabase::Begin() {
    WaitUpTo(patience_);
    // At once a writer: a reader that becomes one later can find that another was quicker.
    try {
        Execute(u"BEGIN IMMEDIATE"_s);
    } catch (...) {
        WaitUpTo(ReadingPatience);
        throw;
    }
}

void SqliteDatabase::BeginSnapshot() {
    Execute(u"BEGIN"_s);
}

void SqliteDatabase::Commit() {
    Execute(u"COMMIT"_s);
    WaitUpTo(ReadingPatience);
}

void SqliteDatabase::RollBack() noexcept {
    // SQLite rolls back by itself after some failures, such as a full disk.
    if (sqlite3_get_autocommit(handle_.get()) == 0) {
        sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
    WaitUpTo(ReadingPatience);
}

bool SqliteDatabase::Has(const QString& type, const QString& name) {
    return Statement(*this,
                     u"SELECT 1 FROM sqlite_schema WHERE type = ? AND name = ? COLLATE NOCASE"_s)
        .Bind(1, type)
        .Bind(2, name)
        .Step();
}

bool SqliteDatabase::TableExists(const QString& name) {
    return Has(u"table"_s, name);
}

bool SqliteDatabase::IndexExists(const QString& name) {
    return Has(u"index"_s, name);
}

qint64 SqliteDatabase::Number(const QString& query) {
    Statement statement(*this, query);
    return statement.Step() ? statement.Integer(0) : 0;
}

Database::State SqliteDatabase::PresentState() {
    return {sqlite3_total_changes64(handle_.get()), Number(u"PRAGMA data_version"_s)};
}

SchemaMark SqliteDatabase::Mark() {
    return {Number(u"PRAGMA application_id"_s), Number(u"PRAGMA user_version"_s)};
}

void SqliteDatabase::SetMark(const SchemaMark& mark) {
    Execute(u"PRAGMA application_id = %1"_s.arg(mark.application));
    Execute(u"PRAGMA user_version = %1"_s.arg(mark.version));
}

QString SqliteDatabase::ColumnType(ColumnKind kind) const {
    switch (kind) {
        case ColumnKind::AutomaticNumber:
            return u"INTEGER PRIMARY KEY AUTOINCREMENT"_s;
        case ColumnKind::Memo:
            return u"MEMO"_s;
        case ColumnKind::Graphic:
            break;
    }
    return u"GRAPHIC"_s;
}

/// The index holds all that a list or a search wants to know, so that neither reads the rows with
/// the large values. Descriptions have no place of their own here, and other programs ask for the
/// state.
QStringList SqliteDatabase::Supplements(const ListedTable& table) const {
    QStringList columns;
    for (const QString& key : table.keys) {
        columns << u"\"%1\" DESC"_s.arg(key);
    }
    for (const QString& column : table.columns) {
        columns << u"\"%1\""_s.arg(column);
    }
    return {u"CREATE INDEX IF NOT EXISTS \"%1\" ON \"%2\" (%3)"_s.arg(table.index, table.name,
                                                                      columns.join(u", "_s))};
}

qint64 SqliteDatabase::LastNumber(const QString& table, const QString& /*column*/) {
    Statement last(*this, u"SELECT seq FROM sqlite_sequence WHERE name = ?"_s);
    return last.Bind(1, table).Step() ? last.Integer(0) : 0;
}

void SqliteDatabase::RaiseLastNumber(const QString& table, const QString& column, qint64 number) {
    if (number <= LastNumber(table, column)) {
        return;
    }
    // A row that bears the number, and goes again.
    Statement(*this, uR"(INSERT INTO "%1" ("%2") VALUES (?))"_s.arg(table, column))
        .Bind(1, number)
        .Step();
    Statement(*this, uR"(DELETE FROM "%1" WHERE "%2" = ?)"_s.arg(table, column))
        .Bind(1, number)
        .Step();
}

QStringList SqliteDatabase::FullTextCreation(const QString& index) const {
    // "detail = none": where in a text a word stands is of no interest.
    return {
        uR"(CREATE VIRTUAL TABLE IF NOT EXISTS "%1" USING fts5(
        "Text", tokenize = '%2', detail = none))"_s.arg(index,
                                                        QString::fromLatin1(WordTokenizerName))};
}

void SqliteDatabase::SetFullText(const QString& index, qint64 row, const QString& text) {
    Statement(*this, uR"(INSERT OR REPLACE INTO "%1" (rowid, "Text") VALUES (?, ?))"_s.arg(index))
        .Bind(1, row)
        .Bind(2, text)
        .Step();
}

std::vector<qint64> SqliteDatabase::RowsWith(const QString& index,
                                             const std::vector<QByteArray>& words) {
    QStringList terms;
    for (const QByteArray& word : words) {
        terms.append(u'"' + QString::fromUtf8(word) + u'"');
    }
    Statement select(*this,
                     uR"(SELECT rowid FROM "%1" WHERE "%1" MATCH ? ORDER BY rowid)"_s.arg(index));
    select.Bind(1, terms.join(u" AND "));
    std::vector<qint64> rows;
    while (select.Step()) {
        rows.push_back(select.Integer(0));
    }
    return rows;
}

}  // namespace kadrona::store
