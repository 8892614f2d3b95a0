#pragma once

#include <QByteArrayView>
#include <QString>

namespace kadrona::store {

/// What a kind of database makes of one SQL statement; Statement, which all others use, describes
/// the members. All but those of a row may throw StoreError.
class PreparedStatement {
 public:
    PreparedStatement() = default;
    virtual ~PreparedStatement() = default;
    PreparedStatement(const PreparedStatement&) = delete;
    PreparedStatement& operator=(const PreparedStatement&) = delete;

    virtual void Bind(int parameter, qint64 value) = 0;
    virtual void Bind(int parameter, const QString& value) = 0;
    virtual void Bind(int parameter, QByteArrayView value) = 0;
    virtual bool Step() = 0;
    virtual void Reset() = 0;

    virtual bool IsNull(int column) const = 0;
    virtual qint64 Integer(int column) const = 0;
    virtual QByteArrayView Utf8(int column) const = 0;
    virtual QByteArrayView Blob(int column) const = 0;
};

}  // namespace kadrona::store
