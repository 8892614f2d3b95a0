#include "platform/LargePages.h"

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace kadrona::platform {

#ifdef Q_OS_LINUX

void PreferLargePages(void* memory, std::size_t bytes) {
    constexpr std::size_t LargeMemory = std::size_t{8} << 20;
    if (bytes < LargeMemory) {
        return;
    }
    // Whole pages alone, which hold nothing else. A system without large pages refuses, which
    // changes nothing.
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + page - 1) / page * page;
    const std::uintptr_t end = (start + bytes) / page * page;
    madvise(static_cast<char*>(memory) + (first - start), end - first, MADV_HUGEPAGE);
}

#else

void PreferLargePages(void*, std::size_t) {}

#endif

}  // namespace kadrona::platform
