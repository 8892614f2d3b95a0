#include "core/archive/EarlierTags.h"

#include "core/archive/ArchiveTable.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

QStringList EarlierTags(store::Database& database) {
    constexpr int MostRecords = 1000;
    store::Statement select(database,
                            uR"(SELECT "ImgTags" FROM "ImgDB"
        WHERE "ImgErstellt" IS NOT NULL ORDER BY "ImgErstellt" DESC, "ID" DESC LIMIT %1)"_s.arg(
                                MostRecords));
    QStringList tags;
    while (select.Step()) {
        tags += TagLines(select.Text(0));
    }
    tags.removeAll(QString());
    tags.removeDuplicates();
    return tags;
}

}  // namespace kadrona::core
