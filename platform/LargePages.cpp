#include "platform/LargePages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <QtGlobal>
#include <cstdint>

namespace kadrona::platform {

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

}  // namespace kadrona::platform
