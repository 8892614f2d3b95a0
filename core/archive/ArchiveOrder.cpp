#include "core/archive/ArchiveOrder.h"

#include <QHash>
#include <algorithm>

#include "core/archive/ArchiveSearch.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// The earliest and the latest day that a database can compare.
const QDate FirstDay(1, 1, 1);
const QDate LastDay(9000, 1, 1);

/// In ascending order.
std::vector<qint64> FiledIn(store::Database& database, const ArchivePeriod& period) {
    store::Statement select(
        database,
        uR"(SELECT "ID" FROM "ImgDB" WHERE "ImgErstellt" >= ? AND "ImgErstellt" < ?
                      ORDER BY "ID")"_s);
    select.Bind(1, period.from.value_or(FirstDay).toString(Qt::ISODate));
    select.Bind(2, period.to.value_or(LastDay).addDays(1).toString(Qt::ISODate));
    std::vector<qint64> ids;
    while (select.Step()) {
        ids.push_back(select.Integer(0));
    }
    return ids;
}

void SortByText(store::Database& database, const QString& column, std::vector<qint64>& ids) {
    QHash<qint64, QByteArray> texts;
    store::Statement select(database, uR"(SELECT "ID", "%1" FROM "ImgDB")"_s.arg(column));
    while (select.Step()) {
        QByteArray folded;
        AppendFolded(folded, select.Utf8(1), Umlauts::Plain);
        texts.insert(select.Integer(0), folded);
    }
    std::ranges::stable_sort(ids, {}, [&](qint64 id) { return texts.value(id); });
}

}  // namespace

std::vector<qint64> Arranged(store::Database& database, std::vector<qint64> ids,
                             const ArchivePeriod& period, ArchiveOrder order) {
    if (period.from || period.to) {
        const std::vector<qint64> filed = FiledIn(database, period);
        std::erase_if(
            ids, [&](qint64 id) { return !std::binary_search(filed.begin(), filed.end(), id); });
    }
    switch (order) {
        case ArchiveOrder::NewestFirst:
            break;
        case ArchiveOrder::OldestFirst:
            std::ranges::reverse(ids);
            break;
        case ArchiveOrder::Tags:
            SortByText(database, u"ImgTags"_s, ids);
            break;
        case ArchiveOrder::Template:
            SortByText(database, u"ImgType"_s, ids);
            break;
    }
    return ids;
}

}  // namespace kadrona::core
