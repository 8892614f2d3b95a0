#pragma once

#include <QString>

namespace kadrona::platform {

/// Keeps out of a folder, while it lives, all other programs and objects that ask for its lock. The
/// system lets go of it when a program is killed. On file systems that know no locks there is none.
class FolderLock {
 public:
    /// Waits for up to a second. Throws FileError, which names the other one where the system does,
    /// where that keeps the lock longer, or the folder cannot be opened.
    explicit FolderLock(const QString& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

 private:
    int handle_;
};

}  // namespace kadrona::platform
