#pragma once

#include <QString>

struct pg_conn;
struct pg_result;

namespace kadrona::store {

/// Why a statement failed, in German where the reason is a common one, else in the server's own
/// words; for the end of an error text, without a full stop.
QString ServerReason(const pg_result* result);

/// Whether a statement failed because the server ends, or has ended, the connection.
bool IsEndOfConnection(const pg_result* result);

/// Why a server did not let us in; it may be another kind of server, or none.
struct ConnectRefusal {
    QString reason;
    /// Whether that may pass without anybody changing the address or the server's settings.
    bool mayPass = false;
};
ConnectRefusal WhyNotConnected(const pg_conn* connection);

}  // namespace kadrona::store
