#pragma once

#include <cstddef>

namespace kadrona::platform {

/// Asks the system to give memory that has not been written to yet in large pages, where it can:
/// the first touch of a whole photo then takes a quarter of the time. Small memory is left alone.
void PreferLargePages(void* memory, std::size_t bytes);

}  // namespace kadrona::platform
