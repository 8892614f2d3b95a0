#include "store/Transaction.h"

#include <sqlite3.h>

#include "store/Database.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

Transaction::Transaction(Database& database) : database_(database) {
    // At once a writer: a reader that becomes one later can find that another was quicker.
    database_.Execute(u"BEGIN IMMEDIATE"_s);
}

Transaction::~Transaction() {
    sqlite3* handle = database_.handle_.get();
    // SQLite rolls back by itself after some failures, such as a full disk.
    if (!committed_ && sqlite3_get_autocommit(handle) == 0) {
        sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::Commit() {
    database_.Execute(u"COMMIT"_s);
    committed_ = true;
}

}  // namespace kadrona::store
