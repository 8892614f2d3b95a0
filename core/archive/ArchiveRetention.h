#pragma once

#include <QDate>
#include <QHash>
#include <QString>
#include <optional>
#include <vector>

#include "store/Database.h"

/// How long photos are kept. Nothing goes by itself: what is due is listed, and deleted when the
/// user says so. Members throw store::StoreError.
namespace kadrona::core {

inline constexpr int LongestRetentionMonths = 1200;

/// The archive's period in months; nothing while photos are kept without a limit.
std::optional<int> RetentionMonths(store::Database& database);

/// Nothing keeps photos without a limit. Throws platform::Error for less than a month, which would
/// make everything due at once, and for more than the longest.
void SetRetentionMonths(store::Database& database, std::optional<int> months);

/// The last day on which a photo is kept, in place of the archive's period.
std::optional<QDate> KeepUntil(store::Database& database, qint64 id);

/// Those of all photos that have such a day.
QHash<qint64, QDate> AllKeptUntil(store::Database& database);

/// Nothing gives the photos back to the archive's period. Throws platform::Error for a day that is
/// not after `today`.
void SetKeepUntil(store::Database& database, const std::vector<qint64>& ids,
                  std::optional<QDate> until, QDate today);

/// The photos whose time is over.
struct DuePhotos {
    /// By number.
    std::vector<qint64> ids;
    /// The newest day up to that day on which one was filed, whatever is due; invalid without one.
    QDate newestFiled;
    /// Why nothing can be said, a sentence; empty where it can.
    QString refusal;
    /// Which photo is passed over because its day is yet to come, a sentence; empty for none.
    QString remark;
};

/// What is due on a day. Where the clock stands before the photo that was filed last nothing is; an
/// earlier one of a day that is yet to come was filed while the clock stood wrong, and is passed
/// over. A photo that was filed while the clock stood wrong is no older than one with a smaller
/// number, whatever its date says: only dates up to `today` count. One whose record was made anew
/// under another number than that in its name has its date alone.
DuePhotos FindDuePhotos(store::Database& database, QDate today);

}  // namespace kadrona::core
