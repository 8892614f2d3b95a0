#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// What came of making records anew.
struct Rebuilding {
    int rebuilt = 0;
    QStringList failures;
};

/// Makes a record anew for each photo of the archive that lost it and has none by now: number and
/// month from its name and folder, tags from its IPTC items, the time from the file and never after
/// `now`; what template it was cut by nobody knows. An original that lies in its place is the
/// record's again. A tag that held a comma comes back as several, but for the first. Throws
/// store::StoreError and platform::Cancelled.
Rebuilding RebuildRecords(store::Database& database, const QStringList& paths, const QDateTime& now,
                          const platform::Progress& progress);

}  // namespace kadrona::core
