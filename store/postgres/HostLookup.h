#pragma once

#include <QByteArrayList>
#include <QDeadlineTimer>
#include <optional>

namespace kadrona::store {

/// The numeric addresses of a host, at most four, looked up until the deadline and not longer: the
/// system's own lookup waits for name servers as long as it likes. Empty where the name has none;
/// nothing where time ran out.
std::optional<QByteArrayList> LookUpHost(const QByteArray& host, const QDeadlineTimer& deadline);

}  // namespace kadrona::store
