#pragma once

#include <QByteArray>
#include <QString>

struct pg_conn;

namespace kadrona::store {

/// Looks at what a server sends before libpq takes it in: a server that asks for a password says
/// how often it is to be scrambled (RFC 5802, "i="), and libpq does that for hours where it says
/// two thousand million.
class PasswordCost {
 public:
    /// The connection outlives the object.
    explicit PasswordCost(pg_conn* connection) : connection_(connection) {}

    /// Why no more of it must be read: what has come since the beginning asks for more than a
    /// second's work, or goes on longer than any server's greeting. In German, without a full stop;
    /// else empty. To be asked each time before libpq reads.
    QString Excess();

 private:
    QByteArray Arrived() const;

    pg_conn* connection_;
    QByteArray seen_;
};

}  // namespace kadrona::store
