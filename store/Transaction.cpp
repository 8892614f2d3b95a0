#include "store/Transaction.h"

#include <sqlite3.h>

#include "store/Database.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

Transaction::Transaction(Database& database) : database_(database) {
    database_.WaitUpTo(database_.patience_);
    // At once a writer: a reader that becomes one later can find that another was quicker.
    try {
        database_.Execute(u"BEGIN IMMEDIATE"_s);
    } catch (...) {
        database_.WaitUpTo(Database::ReadingPatience);
        throw;
    }
}

Transaction::~Transaction() {
    sqlite3* handle = database_.handle_.get();
    // SQLite rolls back by itself after some failures, such as a full disk.
    if (!committed_ && sqlite3_get_autocommit(handle) == 0) {
        sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    database_.WaitUpTo(Database::ReadingPatience);
}

void Transaction::Commit() {
    database_.Execute(u"COMMIT"_s);
    committed_ = true;
}

}  // namespace kadrona::store
