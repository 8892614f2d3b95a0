#include "tests/faults/FailingCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace {

std::array<char, PATH_MAX> watched{};  // empty while nothing is to fail
kadrona::testing::Fault active;
QByteArrayList calls;

bool IsWatched(const char* path) {
    const size_t length = std::strlen(watched.data());
    return length > 0 && path != nullptr && std::strncmp(path, watched.data(), length) == 0;
}

/// Where a file without a name was made is told too.
bool IsWatched(int handle) {
    if (watched.front() == '\0') {
        return false;
    }
    std::array<char, 32> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", handle);
    std::array<char, PATH_MAX> path{};
    // Not by its name, which is one of those below.
    return syscall(SYS_readlink, link.data(), path.data(), path.size() - 1) > 0 &&
           IsWatched(path.data());
}

bool IsWatched(DIR* folder) {
    return IsWatched(dirfd(folder));
}

/// Counts a call on a path or a handle and says whether it is to fail.
template <typename Object>
bool IsHit(const char* name, Object object) {
    const bool removes = std::strcmp(name, "unlink") == 0 || std::strcmp(name, "rmdir") == 0;
    if (!IsWatched(object) || (removes && !active.removals)) {
        return false;
    }
    calls.append(name);
    if (!active.call.isEmpty() && active.call != name) {
        return false;
    }
    const auto count =
        static_cast<int>(active.call.isEmpty() ? calls.size() : calls.count(active.call));
    return active.nth > 0 && (active.fromThenOn ? count >= active.nth : count == active.nth);
}

/// A call that cannot be cut short is not touched by such a fault.
template <typename Object>
bool Fails(const char* name, Object object) {
    if (!IsHit(name, object) || active.error == 0) {
        return false;
    }
    errno = active.error;
    return true;
}

/// How much of `size` is to be written: all, half of it, or -1 for a failure.
ssize_t AllowedSize(const char* name, int handle, size_t size) {
    const bool hit = IsHit(name, handle);
    if (hit && active.error != 0) {
        errno = active.error;
        return -1;
    }
    return static_cast<ssize_t>(hit && size > 1 ? size / 2 : size);
}

}  // namespace

// The labels give the functions the names of the system's without its headers' declarations.
#define KADRONA_FAILING_WITH(failure, type, name, object, parameters, arguments)  \
    extern "C" type Failing_##name parameters __asm__(#name);                     \
    extern "C" type Failing_##name parameters {                                   \
        static auto* const real =                                                 \
            reinterpret_cast<decltype(&Failing_##name)>(dlsym(RTLD_NEXT, #name)); \
        return Fails(#name, object) ? (failure) : real arguments;                 \
    }
#define KADRONA_FAILING(type, name, object, parameters, arguments) \
    KADRONA_FAILING_WITH(-1, type, name, object, parameters, arguments)

#define KADRONA_FAILING_WRITE(name, parameters, arguments)                        \
    extern "C" ssize_t Failing_##name parameters __asm__(#name);                  \
    extern "C" ssize_t Failing_##name parameters {                                \
        static auto* const real =                                                 \
            reinterpret_cast<decltype(&Failing_##name)>(dlsym(RTLD_NEXT, #name)); \
        const ssize_t allowed = AllowedSize(#name, handle, size);                 \
        return allowed < 0 ? -1 : real arguments;                                 \
    }

using Opaque = void*;

KADRONA_FAILING(int, open, path, (const char* path, int flags, mode_t mode), (path, flags, mode))
KADRONA_FAILING(int, open64, path, (const char* path, int flags, mode_t mode), (path, flags, mode))
KADRONA_FAILING(int, __open64_2, path, (const char* path, int flags), (path, flags))
KADRONA_FAILING(int, fsync, handle, (int handle), (handle))
KADRONA_FAILING(int, fdatasync, handle, (int handle), (handle))
KADRONA_FAILING(int, ftruncate, handle, (int handle, off_t size), (handle, size))
KADRONA_FAILING(int, ftruncate64, handle, (int handle, off_t size), (handle, size))
KADRONA_FAILING(off_t, lseek, handle, (int handle, off_t place, int from), (handle, place, from))
KADRONA_FAILING(int, rename, to, (const char* from, const char* to), (from, to))
KADRONA_FAILING(int, renameat2, to,
                (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags),
                (fromFolder, from, toFolder, to, flags))
KADRONA_FAILING(int, linkat, to,
                (int fromFolder, const char* from, int toFolder, const char* to, int flags),
                (fromFolder, from, toFolder, to, flags))
KADRONA_FAILING(int, unlink, path, (const char* path), (path))
KADRONA_FAILING(int, rmdir, path, (const char* path), (path))
KADRONA_FAILING(int, mkdir, path, (const char* path, mode_t mode), (path, mode))
KADRONA_FAILING(int, chmod, path, (const char* path, mode_t mode), (path, mode))
KADRONA_FAILING(int, fchmod, handle, (int handle, mode_t mode), (handle, mode))
KADRONA_FAILING(ssize_t, readlink, path, (const char* path, char* target, size_t size),
                (path, target, size))
KADRONA_FAILING_WITH(nullptr, DIR*, opendir, path, (const char* path), (path))
KADRONA_FAILING_WITH(nullptr, Opaque, readdir, folder, (DIR * folder), (folder))
KADRONA_FAILING_WITH(nullptr, Opaque, readdir64, folder, (DIR * folder), (folder))
KADRONA_FAILING(int, stat, path, (const char* path, Opaque status), (path, status))
KADRONA_FAILING(int, stat64, path, (const char* path, Opaque status), (path, status))
KADRONA_FAILING(int, lstat, path, (const char* path, Opaque status), (path, status))
KADRONA_FAILING(int, lstat64, path, (const char* path, Opaque status), (path, status))
KADRONA_FAILING(int, fstat, handle, (int handle, Opaque status), (handle, status))
KADRONA_FAILING(int, fstat64, handle, (int handle, Opaque status), (handle, status))
KADRONA_FAILING(int, statx, path,
                (int folder, const char* path, int flags, unsigned mask, Opaque status),
                (folder, path, flags, mask, status))
KADRONA_FAILING(ssize_t, read, handle, (int handle, void* data, size_t size), (handle, data, size))
KADRONA_FAILING(ssize_t, pread64, handle, (int handle, void* data, size_t size, off_t place),
                (handle, data, size, place))
KADRONA_FAILING_WRITE(write, (int handle, const void* data, size_t size),
                      (handle, data, static_cast<size_t>(allowed)))
KADRONA_FAILING_WRITE(pwrite64, (int handle, const void* data, size_t size, off_t place),
                      (handle, data, static_cast<size_t>(allowed), place))

/// What fails is closed all the same, as the system does it.
extern "C" int Failing_close(int handle) __asm__("close");
extern "C" int Failing_close(int handle) {
    static auto* const real = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "close"));
    const bool fails = Fails("close", handle);
    const int result = real(handle);
    if (fails) {
        errno = active.error;
    }
    return fails ? -1 : result;
}

namespace kadrona::testing {

void StartFailing(const QByteArray& folder, const Fault& fault) {
    active = fault;
    calls.clear();
    watched.fill('\0');
    std::strncpy(watched.data(), folder.constData(), watched.size() - 1);
}

QByteArrayList StopFailing() {
    watched.front() = '\0';
    return calls;
}

}  // namespace kadrona::testing
