#include "store/sqlite/EngineFiles.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

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

/// Of the archive's database and its copies, and what SQLite makes for itself.
bool IsOwn(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.starts_with("etilqs_") || name.starts_with("KDRImageBase.");
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
    }
}

}  // namespace kadrona::store
