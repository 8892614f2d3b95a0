#include "dialogs/archive/ArchiveFilterBar.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

#include "dialogs/archive/DateField.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// In the order of the box.
enum Days { All, Today, Week, Month, Year, Own };

QDateEdit* NewDateEdit(const QString& name, const QString& spoken) {
    QDateEdit* edit = NewDateField(QDate::currentDate());
    edit->setObjectName(name);
    edit->setAccessibleName(spoken);
    return edit;
}

}  // namespace

ArchiveFilterBar::ArchiveFilterBar(QWidget* parent)
    : QWidget(parent),
      period_(new QComboBox),
      from_(NewDateEdit(u"FromDate"_s, u"von"_s)),
      to_(NewDateEdit(u"ToDate"_s, u"bis"_s)),
      order_(new QComboBox) {
    period_->setObjectName(u"PeriodBox"_s);
    period_->addItems({u"alle Tage"_s, u"heute"_s, u"letzte 7 Tage"_s, u"letzte 30 Tage"_s,
                       u"letzte 365 Tage"_s, u"von … bis …"_s});
    order_->setObjectName(u"OrderBox"_s);
    order_->addItems(
        {u"neueste zuerst"_s, u"älteste zuerst"_s, u"Schlüsselworte A–Z"_s, u"Schablone A–Z"_s});
    auto* periodLabel = new QLabel(u"&Zeitraum"_s);
    periodLabel->setBuddy(period_);
    auto* orderLabel = new QLabel(u"&Reihenfolge"_s);
    orderLabel->setBuddy(order_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 4);
    layout->setSpacing(6);
    for (QWidget* part : std::initializer_list<QWidget*>{periodLabel, period_, from_, to_}) {
        layout->addWidget(part);
    }
    layout->addStretch();
    layout->addWidget(orderLabel);
    layout->addWidget(order_);
    ShowDates();
    connect(period_, &QComboBox::currentIndexChanged, this, [this] {
        ShowDates();
        Q_EMIT Changed();
    });
    connect(order_, &QComboBox::currentIndexChanged, this, &ArchiveFilterBar::Changed);
    for (QDateEdit* edit : {from_, to_}) {
        connect(edit, &QDateEdit::dateChanged, this, &ArchiveFilterBar::Changed);
    }
}

void ArchiveFilterBar::ShowDates() {
    from_->setVisible(period_->currentIndex() == Own);
    to_->setVisible(period_->currentIndex() == Own);
}

core::ArchivePeriod ArchiveFilterBar::Period() const {
    const QDate today = QDate::currentDate();
    switch (period_->currentIndex()) {
        case Today:
            return {today, today};
        case Week:
            return {today.addDays(-6), today};
        case Month:
            return {today.addDays(-29), today};
        case Year:
            return {today.addDays(-364), today};
        case Own:
            return {from_->date(), to_->date()};
        default:
            return {};
    }
}

core::ArchiveOrder ArchiveFilterBar::Order() const {
    return static_cast<core::ArchiveOrder>(order_->currentIndex());
}

void ArchiveFilterBar::Reset() {
    const QSignalBlocker blocker(this);
    period_->setCurrentIndex(All);
    order_->setCurrentIndex(0);
    ShowDates();
}

}  // namespace kadrona::dialogs
