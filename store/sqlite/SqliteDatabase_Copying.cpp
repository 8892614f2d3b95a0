#include <sqlite3.h>
#include <unistd.h>

#include <QFile>
#include <QScopeGuard>
#include <cerrno>
#include <limits>
#include <memory>
#include <utility>

#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"
#include "store/StoreError.h"
#include "store/sqlite/EngineFiles.h"
#include "store/sqlite/SqliteDatabase.h"
#include "store/sqlite/SqliteReason.h"

namespace kadrona::store {

namespace {

using namespace Qt::StringLiterals;

struct Finisher {
    void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

struct HandleCloser {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};

[[noreturn]] void ThrowFailedCopy(const QString& path, const QString& reason) {
    throw StoreError(u"Die Sicherung der Datenbank „%1“ konnte nicht geschrieben werden: %2."_s.arg(
        path, reason));
}

/// Copies all pages to an open, empty database. Returns the engine's last result.
int CopyPages(sqlite3* from, sqlite3* to, const platform::Progress& progress) {
    const std::unique_ptr<sqlite3_backup, Finisher> backup(
        sqlite3_backup_init(to, "main", from, "main"));
    if (backup == nullptr) {
        return sqlite3_errcode(to);
    }
    // A writer keeps the copy waiting for a moment, and starts it anew. Where that goes on, the
    // rest is copied in one go, which keeps the writers waiting.
    constexpr int PagesAtOnce = 256;
    constexpr int MostRestarts = 3;
    constexpr int MillisecondsToWait = 20;
    constexpr int LongestWait = 30'000;
    int restarts = 0;
    int left = std::numeric_limits<int>::max();
    int waited = 0;
    int result = SQLITE_OK;
    while (waited <= LongestWait &&
           (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_LOCKED)) {
        result = sqlite3_backup_step(backup.get(), restarts > MostRestarts ? -1 : PagesAtOnce);
        const int all = sqlite3_backup_pagecount(backup.get());
        const int before = std::exchange(left, sqlite3_backup_remaining(backup.get()));
        restarts += left > before ? 1 : 0;
        progress(u"Die Datenbank wird kopiert …"_s, all - left, all);
        waited = result == SQLITE_OK ? 0 : waited + MillisecondsToWait;
        sqlite3_sleep(waited > 0 ? MillisecondsToWait : 0);
    }
    return result;
}

/// Makes an empty file, where an earlier copy may have left one.
void MakeCopyFile(const QString& path) {
    QFile::remove(path);
    const int handle = platform::CreateNewFile(path);
    if (handle < 0) {
        ThrowFailedCopy(path, platform::SystemReason(errno));
    }
    close(handle);
}

}  // namespace

bool SqliteDatabase::CopyTo(const QString& path, const platform::Progress& progress) {
    MakeCopyFile(path);
    auto remove = qScopeGuard([&] { QFile::remove(path); });
    {
        sqlite3* opened = nullptr;
        int result = sqlite3_open_v2(path.toUtf8().constData(), &opened,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW, nullptr);
        const std::unique_ptr<sqlite3, HandleCloser> copy(opened);
        if (result == SQLITE_OK) {
            AllowFilesOf(copy.get());
            // Half a copy is worth nothing.
            sqlite3_exec(copy.get(), "PRAGMA journal_mode = OFF", nullptr, nullptr, nullptr);
            result = CopyPages(handle_.get(), copy.get(), progress);
        }
        if (result != SQLITE_DONE) {
            ThrowFailedCopy(path, SqliteReason(nullptr, result));
        }
    }
    remove.dismiss();
    return true;
}

}  // namespace kadrona::store
