#pragma once

#include <QByteArrayView>
#include <QString>
#include <memory>

struct sqlite3_stmt;

namespace kadrona::store {

class Database;

/// One prepared SQL statement. Bind its parameters, Step through its rows, read their columns;
/// Reset to run it once more. Every member that can fail throws StoreError.
class Statement {
 public:
    /// `sql` is a single statement.
    Statement(Database& database, const QString& sql);

    /// Sets a parameter, counted from 1. The value is copied. What is not set is NULL.
    Statement& Bind(int parameter, qint64 value);
    Statement& Bind(int parameter, const QString& value);
    Statement& Bind(int parameter, QByteArrayView value);

    /// Goes to the next row. False when there is none (any more).
    bool Step();

    /// Back to before the first row; parameters keep their values.
    void Reset();

    /// Columns of the current row, counted from 0. A value of another type is converted as SQLite
    /// does; NULL reads as 0, empty text or empty bytes.
    bool IsNull(int column) const;
    qint64 Integer(int column) const;
    QString Text(int column) const;

    /// Valid until the next Step, Reset or the statement's end.
    QByteArrayView Utf8(int column) const;
    QByteArrayView Blob(int column) const;

 private:
    struct Finalizer {
        void operator()(sqlite3_stmt* handle) const;
    };

    void Check(int result) const;

    Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

}  // namespace kadrona::store
