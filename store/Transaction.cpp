#include "store/Transaction.h"

#include "store/Database.h"

namespace kadrona::store {

Transaction::Transaction(Database& database) : database_(database) {
    database_.Begin();
}

Transaction::~Transaction() {
    if (!committed_) {
        database_.RollBack();
    }
}

void Transaction::Commit() {
    database_.Commit();
    committed_ = true;
}

Snapshot::Snapshot(Database& database) : database_(database) {
    database_.BeginSnapshot();
}

Snapshot::~Snapshot() {
    database_.RollBack();
}

}  // namespace kadrona::store
