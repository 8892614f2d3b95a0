#pragma once

#include <QDate>

class QDateEdit;

namespace kadrona::dialogs {

/// A field for a day, "22.11.2026", with a calendar that opens below it. The caller owns it.
QDateEdit* NewDateField(QDate day);

}  // namespace kadrona::dialogs
