#pragma once

#include <QByteArray>

namespace kadrona::store {

/// A statement in the form that the server takes, and how many parameters it has.
struct NumberedStatement {
    QByteArray sql;
    int parameters = 0;
};

/// Makes $1, $2, ... of the "?" of a statement; those in quotes stay.
NumberedStatement NumberParameters(const QByteArray& sql);

}  // namespace kadrona::store
