#include "platform/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {

namespace {

/// All at once: page by page, each would interrupt whoever touches it first.
std::unique_ptr<SharedMemory::View> Mapped(int handle, qint64 size, int flags) {
    void* const bytes = size <= 0 ? MAP_FAILED
                                  : mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE,
                                         MAP_SHARED | flags, handle, 0);
    return bytes == MAP_FAILED ? nullptr : std::make_unique<SharedMemory::View>(bytes, size);
}

}  // namespace

SharedMemory::View::~View() {
    munmap(bytes_, static_cast<size_t>(size_));
}

SharedMemory::SharedMemory()
    : handle_(memfd_create("kadrona-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    if (handle_ < 0) {
        throw Error(SystemReason(errno));
    }
}

SharedMemory::~SharedMemory() {
    close(handle_);
}

std::unique_ptr<SharedMemory::View> SharedMemory::Resize(qint64 size) const {
    return ftruncate(handle_, size) == 0 ? Mapped(handle_, size, 0) : nullptr;
}

bool SharedMemory::Bound(qint64 most) const {
    return ftruncate(handle_, most) == 0 && fcntl(handle_, F_ADD_SEALS, F_SEAL_GROW) == 0;
}

std::unique_ptr<SharedMemory::View> SharedMemory::Fixed(qint64 size) const {
    struct stat status {};
    const bool isSo = fcntl(handle_, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW) == 0 &&
                      fstat(handle_, &status) == 0 && status.st_size == size;
    return isSo ? Mapped(handle_, size, MAP_POPULATE) : nullptr;
}

}  // namespace kadrona::platform
