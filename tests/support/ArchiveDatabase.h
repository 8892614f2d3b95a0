#pragma once

#include <QStringList>

#include "store/Statement.h"

namespace kadrona::testing {

/// The first column of a query's rows.
inline QStringList Column(store::Database& database, const QString& query) {
    store::Statement statement(database, query);
    QStringList values;
    while (statement.Step()) {
        values.append(statement.Text(0));
    }
    return values;
}

/// What is wrong with an archive's database or with its index of words; empty where all is well.
inline QString DatabaseFault(store::Database& database) {
    const QString state = Column(database, QStringLiteral("PRAGMA integrity_check")).join(u' ');
    if (state != u"ok" || !database.TableExists(QStringLiteral("ImgTags_idx"))) {
        return state == u"ok" ? QString() : state;
    }
    database.Execute(
        QStringLiteral(R"(INSERT INTO "ImgTags_idx" ("ImgTags_idx") VALUES ('integrity-check'))"));
    const QStringList strangers =
        Column(database, QStringLiteral(R"(SELECT "ID" FROM "ImgDB" LEFT JOIN "ImgTags_idx"
            ON "ImgTags_idx".rowid = "ID" WHERE "ImgTags" IS NOT "Text")"));
    return strangers.isEmpty() ? QString()
                               : QStringLiteral("the index of words is not that of the records");
}

}  // namespace kadrona::testing
