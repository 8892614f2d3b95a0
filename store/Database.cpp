#include "store/Database.h"

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
#include "store/SqliteReason.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/WordTokenizer.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView FileName = u"KDRImageBase.db";

/// Far more than the program writes, bytes. SQLite's own billion would be in memory several times.
constexpr int LongestValue = 16 << 20;

/// A database file can carry SQL of its own (views, triggers); keep it from harmful functions and
/// our own SQL from the file's inner structures.
void Harden(sqlite3* handle) {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
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

}  // namespace

void Database::Closer::operator()(sqlite3* handle) const {
    sqlite3_close_v2(handle);
}

Database::Database(const QString& folder, std::chrono::milliseconds patience)
    : path_(platform::JoinPath(folder, FileName)), patience_(patience) {
    const auto check = [this](const QString& reason) {
        if (!reason.isEmpty()) {
            throw StoreError(
                u"Die Datenbank „%1“ konnte nicht geöffnet werden: %2."_s.arg(path_, reason));
        }
    };
    const auto [realFolder, refusal] = platform::FollowLinks(folder, platform::Links::Own);
    check(refusal);
    const QString file = platform::JoinPath(realFolder, FileName);
    check(MakeFile(file));

    sqlite3* handle = nullptr;
    int result = sqlite3_open_v2(file.toUtf8().constData(), &handle,
                                 SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW,
                                 nullptr);
    handle_.reset(handle);
    if (result == SQLITE_OK) {
        sqlite3_extended_result_codes(handle, 1);
        // Whoever starts while another program recovers or writes must not be without it for good.
        WaitUpTo(OpeningPatience);
        Harden(handle);
        sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, LongestValue);
        result = RegisterWordTokenizer(handle);
    }
    if (result == SQLITE_OK) {
        // The file is read only now: without this, garbage would pass for a database.
        result = sqlite3_exec(handle, "SELECT 1 FROM sqlite_schema", nullptr, nullptr, nullptr);
        WaitUpTo(ReadingPatience);
    }
    check(result == SQLITE_OK ? QString() : SqliteReason(handle, result));
}

void Database::WaitUpTo(std::chrono::milliseconds patience) {
    sqlite3_busy_timeout(handle_.get(), static_cast<int>(std::min(patience, patience_).count()));
}

void Database::Execute(const QString& sql) {
    Statement statement(*this, sql);
    while (statement.Step()) {
    }
}

void Database::RunScript(const QStringList& statements) {
    Transaction transaction(*this);
    for (const QString& sql : statements) {
        Execute(sql);
    }
    transaction.Commit();
}

bool Database::TableExists(const QString& name) {
    Statement statement(
        *this, u"SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ? COLLATE NOCASE"_s);
    return statement.Bind(1, name).Step();
}

qint64 Database::LastInsertedId() const {
    return sqlite3_last_insert_rowid(handle_.get());
}

Database::State Database::PresentState() {
    Statement statement(*this, u"PRAGMA data_version"_s);
    statement.Step();
    return {sqlite3_total_changes64(handle_.get()), statement.Integer(0)};
}

}  // namespace kadrona::store
