#pragma once

#include <memory>

#include "store/PreparedStatement.h"
#include "store/sqlite/WorkLimit.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kadrona::store {

/// A value of another type is converted as SQLite does.
class SqliteStatement : public PreparedStatement {
 public:
    /// All outlive the statement; `database` is its name for messages. Throws StoreError.
    SqliteStatement(sqlite3* handle, WorkLimit& limit, const QString& database, const QString& sql);

    void Bind(int parameter, qint64 value) override;
    void Bind(int parameter, const QString& value) override;
    void Bind(int parameter, QByteArrayView value) override;
    bool Step() override;
    void Reset() override;
    bool IsNull(int column) const override;
    qint64 Integer(int column) const override;
    QByteArrayView Utf8(int column) const override;
    QByteArrayView Blob(int column) const override;

 private:
    struct Finalizer {
        void operator()(sqlite3_stmt* handle) const;
    };

    void Check(int result) const;

    sqlite3* connection_;
    WorkLimit& limit_;
    WorkLimit::Work work_;
    const QString& database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

}  // namespace kadrona::store
