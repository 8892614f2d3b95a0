#pragma once

namespace kadrona::store {

/// From now on, for the whole process, the engine opens no pipe, which would wait for a writer, and
/// knows and removes no files but those of "KDRImageBase" and its own temporary ones: a journal
/// that another account has put beside a database can name any file as one that goes with it, and
/// the engine would remove that.
void BoundEngineFiles();

}  // namespace kadrona::store
