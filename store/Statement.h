#pragma once

#include <QByteArrayView>
#include <QString>
#include <memory>

#include "store/PreparedStatement.h"

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
    bool Step() { return prepared_->Step(); }

    /// Back to before the first row; parameters keep their values.
    void Reset() { prepared_->Reset(); }

    /// Columns of the current row, counted from 0. NULL reads as 0, empty text or empty bytes; so
    /// does what is of another type and cannot be converted.
    bool IsNull(int column) const { return prepared_->IsNull(column); }
    qint64 Integer(int column) const { return prepared_->Integer(column); }
    QString Text(int column) const { return QString::fromUtf8(Utf8(column)); }

    /// Valid until the next Step, Reset or the statement's end.
    QByteArrayView Utf8(int column) const { return prepared_->Utf8(column); }
    QByteArrayView Blob(int column) const { return prepared_->Blob(column); }

 private:
    std::unique_ptr<PreparedStatement> prepared_;
};

}  // namespace kadrona::store
