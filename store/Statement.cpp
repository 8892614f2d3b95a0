#include "store/Statement.h"

#include "store/Database.h"

namespace kadrona::store {

Statement::Statement(Database& database, const QString& sql) : prepared_(database.Prepare(sql)) {}

Statement& Statement::Bind(int parameter, qint64 value) {
    prepared_->Bind(parameter, value);
    return *this;
}

Statement& Statement::Bind(int parameter, const QString& value) {
    prepared_->Bind(parameter, value);
    return *this;
}

Statement& Statement::Bind(int parameter, QByteArrayView value) {
    prepared_->Bind(parameter, value);
    return *this;
}

}  // namespace kadrona::store
