#pragma once

#include <QDate>
#include <QString>
#include <optional>

class QWidget;

namespace kadrona::dialogs {

// Both return nothing when cancelled. Object name: "LimitDialog", with the box "Limited", the
// editor "Limit", "OkButton" and "CancelButton".

/// Asks after how many months the photos of the archive are due; at first `months`, nothing for no
/// limit.
std::optional<std::optional<int>> AskForPeriod(QWidget* parent, std::optional<int> months);

/// Asks until which day some photos are kept, after `today`; nothing for the archive's period.
std::optional<std::optional<QDate>> AskForDay(QWidget* parent, std::optional<QDate> until,
                                              QDate today);

}  // namespace kadrona::dialogs
