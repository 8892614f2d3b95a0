#pragma once

#include <QWidget>

#include "core/archive/ArchiveOrder.h"

class QComboBox;
class QDateEdit;

namespace kadrona::dialogs {

/// The row of the archive's window that says from which days photos are shown and in which order.
/// Object names: "PeriodBox", "FromDate", "ToDate", "OrderBox".
class ArchiveFilterBar : public QWidget {
    Q_OBJECT

 public:
    explicit ArchiveFilterBar(QWidget* parent = nullptr);

    /// Counted from today.
    core::ArchivePeriod Period() const;
    core::ArchiveOrder Order() const;
    /// Photos of all days, newest first; says nothing.
    void Reset();

 Q_SIGNALS:
    void Changed();

 private:
    void ShowDates();

    QComboBox* period_;
    QDateEdit* from_;
    QDateEdit* to_;
    QComboBox* order_;
};

}  // namespace kadrona::dialogs
