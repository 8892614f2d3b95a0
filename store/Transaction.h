#pragma once

namespace kadrona::store {

class Database;

/// All changes from its construction to Commit, or none: without Commit they are rolled back when
/// it ends. Transactions do not nest.
class Transaction {
 public:
    /// Waits for another writer as long as the database does. Throws StoreError.
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Throws StoreError; the changes are then rolled back at the end.
    void Commit();

 private:
    Database& database_;
    bool committed_ = false;
};

/// Reading as of one moment, whatever others write until it ends; nothing is written meanwhile.
class Snapshot {
 public:
    /// Throws StoreError.
    explicit Snapshot(Database& database);
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

 private:
    Database& database_;
};

}  // namespace kadrona::store
