#pragma once

#include <vector>

#include "store/PreparedStatement.h"
#include "store/postgres/Placeholders.h"
#include "store/postgres/ServerLink.h"

namespace kadrona::store {

/// Runs at the first Step and then has all its rows: another statement may run meanwhile. What
/// cannot stand in the server's texts, the character 0, is left out of them.
class PostgresStatement : public PreparedStatement {
 public:
    /// `link` outlives the statement.
    PostgresStatement(ServerLink& link, const QString& sql);

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
    void Set(int parameter, ServerParameter value);
    QByteArrayView Raw(int column) const;
    /// Keeps a value that had to be converted while its row is the current one.
    QByteArrayView Kept(int column, QByteArray value) const;

    ServerLink& link_;
    NumberedStatement statement_;
    std::vector<ServerParameter> parameters_;
    ServerLink::Result result_;
    int row_ = -1;
    mutable std::vector<QByteArray> kept_;
};

}  // namespace kadrona::store
