#include "store/Database.h"

#include "store/Statement.h"
#include "store/Transaction.h"

namespace kadrona::store {

void Database::Execute(const QString& sql) {
    Statement statement(*this, sql);
    while (statement.Step()) {
    }
}

void Database::RunScript(const QStringList& statements) {
    Transaction transaction(*this);
    for (const QString& sql : statements) {
        Execute(sql);
    }
    transaction.Commit();
}

}  // namespace kadrona::store
