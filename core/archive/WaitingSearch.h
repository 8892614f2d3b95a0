#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/archive/ArchiveOrder.h"
#include "core/archive/FilingQueue.h"

namespace kadrona::core {

/// Which of the photos that wait are looked for.
struct WaitingFilter {
    QString text = {};  ///< as ArchiveTable::Find understands it
    ArchivePeriod period = {};
    /// Only those that the archive's period would make due on that day; without a period none.
    std::optional<QDate> dueOn = {};
    std::optional<int> retentionMonths = {};
    /// See DuePhotos: none is older once it is filed, whatever the clock was when it was made.
    QDate newestFiled = {};
};

/// The names of the photos in the queue that the archive's window would list were they filed. One
/// whose file cannot be read is listed where all are; else why goes to `unread`, a sentence.
QStringList FindWaiting(const FilingQueue& queue, const WaitingFilter& filter,
                        QStringList* unread = nullptr);

}  // namespace kadrona::core
