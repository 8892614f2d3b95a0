#pragma once

struct sqlite3;

namespace kadrona::store {

/// From now on, for the whole process, the engine opens no pipe, which would wait for a writer, and
/// maps none into memory, where whoever cuts it short ends the program, and knows and removes no
/// files but its own temporary ones and those of the databases of AllowFilesOf: a journal that
/// another account has put beside a database can name any file as one that goes with it, and the
/// engine would remove that.
void BoundEngineFiles();

/// To be called for each database that was opened, before anything is read from it: its own journal
/// would count as none.
void AllowFilesOf(sqlite3* database);

}  // namespace kadrona::store
