#include "core/archive/WaitingSearch.h"

#include <algorithm>

#include "core/archive/ArchiveSearch.h"
#include "core/archive/ArchiveTable.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

bool IsIn(const ArchivePeriod& period, QDate day) {
    return (!period.from || day >= *period.from) && (!period.to || day <= *period.to);
}

bool IsListed(const WaitingPhoto& photo, const ArchiveSearch& search, const WaitingFilter& filter) {
    const QDate day = photo.created.date();
    const QDate filed = std::max(day, filter.newestFiled);
    if (filter.dueOn && (!filter.retentionMonths || !filed.isValid() ||
                         filed.addMonths(*filter.retentionMonths) >= *filter.dueOn)) {
        return false;
    }
    QByteArray fields;
    for (const QString& field :
         {ShownTime(photo.created), photo.created.toString(u"yyyy-MM-dd HH:mm"_s),
          photo.templateName, photo.tags}) {
        AppendField(fields, field.toUtf8());
    }
    return IsIn(filter.period, day) && search.Matches(fields);
}

}  // namespace

QStringList FindWaiting(const FilingQueue& queue, const WaitingFilter& filter,
                        QStringList* unread) {
    const ArchiveSearch search(filter.text);
    const bool all = search.IsEmpty() && !filter.period.from && !filter.period.to && !filter.dueOn;
    QStringList found;
    for (const QString& name : queue.Waiting()) {
        try {
            if (all || IsListed(queue.ReadKnowledge(name), search, filter)) {
                found.append(name);
            }
        } catch (const platform::Error& error) {  // nobody knows whose it is
            if (unread != nullptr) {
                unread->append(error.Text());
            }
        }
    }
    return found;
}

}  // namespace kadrona::core
