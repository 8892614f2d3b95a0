#include "store/sqlite/EngineFiles.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kadrona::store {

namespace {

using Call = sqlite3_syscall_ptr;

int OpenAtOnce(const char* path, int flags, int mode) {
    const int handle = open(path, flags | O_NONBLOCK | O_NOCTTY, mode);
    struct stat status {};
    if (handle >= 0 && fstat(handle, &status) == 0 && S_ISFIFO(status.st_mode)) {
        close(handle);
        errno = ENXIO;
        return -1;
    }
    return handle;
}

/// The databases that were opened.
std::vector<std::string>& Databases() {
    static std::vector<std::string> paths;
    return paths;
}

/// What belongs to an opened database, and what SQLite makes for itself.
bool IsOwn(std::string_view path) {
    static constexpr std::array<std::string_view, 4> Endings{"", "-journal", "-wal", "-shm"};
    const auto belongsTo = [&](const std::string& database) {
        return path.starts_with(database) &&
               std::ranges::find(Endings, path.substr(database.size())) != Endings.end();
    };
    return path.substr(path.rfind('/') + 1).starts_with("etilqs_") ||
           std::ranges::any_of(Databases(), belongsTo);
}

/// A journal whose companion is not there counts as done with.
int LookForOwn(const char* path, struct stat* status) {
    const int result = stat(path, status);
    if (result == 0 && S_ISREG(status->st_mode) && !IsOwn(path)) {
        errno = ENOENT;
        return -1;
    }
    return result;
}

decltype(sqlite3_vfs::xAccess) accessOfEngine = nullptr;

/// A companion that counts as there is read whole. The engine asks that way for a database's
/// journal too, and for a log of changes, which it takes without asking where the database says
/// that it has one.
int IsThere(sqlite3_vfs* files, const char* path, int question, int* answer) {
    if (question == SQLITE_ACCESS_EXISTS && !std::string_view(path).ends_with("-journal")) {
        *answer = 0;
        return SQLITE_OK;
    }
    return accessOfEngine(files, path, question, answer);
}

/// A log of changes that several programs write has its index in a file that each of them maps.
void* MapNothing(void* /*at*/, size_t /*size*/, int /*protection*/, int /*flags*/, int /*file*/,
                 off_t /*offset*/) {
    errno = ENOTSUP;
    return MAP_FAILED;
}

int RemoveOwn(const char* path) {
    if (!IsOwn(path) || std::string_view(path).ends_with(".db")) {
        errno = EPERM;
        return -1;
    }
    return unlink(path);
}

}  // namespace

void BoundEngineFiles() {
    sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
    if (files != nullptr && files->iVersion >= 3) {
        files->xSetSystemCall(files, "open", reinterpret_cast<Call>(OpenAtOnce));
        files->xSetSystemCall(files, "stat", reinterpret_cast<Call>(LookForOwn));
        files->xSetSystemCall(files, "unlink", reinterpret_cast<Call>(RemoveOwn));
        files->xSetSystemCall(files, "mmap", reinterpret_cast<Call>(MapNothing));
        accessOfEngine = std::exchange(files->xAccess, IsThere);
    }
}

void AllowFilesOf(sqlite3* database) {
    const char* const name = sqlite3_db_filename(database, "main");
    if (name != nullptr && std::ranges::find(Databases(), name) == Databases().end()) {
        Databases().emplace_back(name);
    }
}

}  // namespace kadrona::store
