#pragma once

namespace kadrona::platform {

/// Starts all threads of the toolkit's pool, for good. The toolkit paints with them and waits
/// without a limit for one that could not be started later, when memory or processes are short.
/// False where not all have started within two seconds; the pool is of no use then, and waits at a
/// usual exit.
bool StartPoolThreads();

}  // namespace kadrona::platform
