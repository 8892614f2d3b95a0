#include "store/Database.h"

#include "store/Statement.h"
#include "store/Transaction.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

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

void Database::Compact(const QString& /*fullTextIndex*/, const platform::Progress& /*progress*/) {}

bool Database::CopyTo(const QString& /*path*/, const platform::Progress& /*progress*/) {
    return false;
}

void Database::RemoveFullText(const QString& index, qint64 row) {
    Statement(*this, uR"(DELETE FROM "%1" WHERE rowid = ?)"_s.arg(index)).Bind(1, row).Step();
}

}  // namespace kadrona::store
