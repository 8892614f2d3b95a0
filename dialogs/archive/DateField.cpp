#include "dialogs/archive/DateField.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QHeaderView>
#include <QTableView>
#include <QTextCharFormat>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

QDateEdit* NewDateField(QDate day) {
    auto* field = new QDateEdit(day);
    field->setDisplayFormat(u"dd.MM.yyyy"_s);
    field->setCalendarPopup(true);
    // The toolkit's red is hard to read on dark.
    for (const Qt::DayOfWeek weekend : {Qt::Saturday, Qt::Sunday}) {
        field->calendarWidget()->setWeekdayTextFormat(weekend, QTextCharFormat());
    }
    // Its size leaves out the frame and knows no least height of a week: the last one would be cut.
    auto* days = field->calendarWidget()->findChild<QTableView*>();
    days->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    days->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    days->verticalHeader()->setMinimumSectionSize(1);
    return field;
}

}  // namespace kadrona::dialogs
