#pragma once

namespace kadrona::testing {

/// Lets OpenCV's parallel loops run on threads of this program's own instead of those of its
/// libraries. The thread sanitizer sees only what was compiled with it: how the libraries' threads
/// wait for each other is hidden from it, and every loop looked like a race.
void UseVisibleThreads();

}  // namespace kadrona::testing
