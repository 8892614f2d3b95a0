#include "core/archive/ArchiveRetention.h"

#include <algorithm>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/KeepingSchema.h"
#include "platform/Error.h"
#include "store/Statement.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString PeriodName = u"RetentionMonths"_s;

bool IsPeriod(int months) {
    return months >= 1 && months <= LongestRetentionMonths;
}

/// Of a time or a day as they are stored; invalid where it is neither.
QDate DayOf(const QString& stored) {
    return QDate::fromString(stored.left(10), Qt::ISODate);
}

/// By the photo's own day where it has one, else by the archive's period.
bool IsOver(QDate until, QDate filed, std::optional<int> months, QDate today) {
    return until.isValid() ? until < today
                           : months && filed.isValid() && filed.addMonths(*months) < today;
}

struct DatedPhoto {
    qint64 id = 0;
    QDate day;
};

QString LaterThan(const DatedPhoto& photo, QDate today) {
    return u"Das Bild mit der Nummer %1 ist vom %2, heute ist nach der Uhr dieses Computers der %3."_s
        .arg(photo.id)
        .arg(photo.day.toString(u"dd.MM.yyyy"_s), today.toString(u"dd.MM.yyyy"_s));
}

}  // namespace

std::optional<int> RetentionMonths(store::Database& database) {
    if (!database.TableExists(u"ImgKeeping"_s)) {
        return std::nullopt;
    }
    store::Statement select(database, uR"(SELECT "Value" FROM "ImgKeeping" WHERE "Name" = ?)"_s);
    const int months = select.Bind(1, PeriodName).Step() ? select.Text(0).toInt() : 0;
    return IsPeriod(months) ? std::optional(months) : std::nullopt;
}

void SetRetentionMonths(store::Database& database, std::optional<int> months) {
    if (months && !IsPeriod(*months)) {
        throw platform::Error(u"Bilder können 1 bis %1 Monate aufbewahrt werden, nicht %2."_s
                                  .arg(LongestRetentionMonths)
                                  .arg(*months));
    }
    CreateKeeping(database);
    if (!months) {
        store::Statement(database, uR"(DELETE FROM "ImgKeeping" WHERE "Name" = ?)"_s)
            .Bind(1, PeriodName)
            .Step();
        return;
    }
    store::Statement(database,
                     uR"(INSERT INTO "ImgKeeping" ("Name", "Value") VALUES (?, ?)
                         ON CONFLICT ("Name") DO UPDATE SET "Value" = excluded."Value")"_s)
        .Bind(1, PeriodName)
        .Bind(2, QString::number(*months))
        .Step();
}

std::optional<QDate> KeepUntil(store::Database& database, qint64 id) {
    if (!database.TableExists(u"ImgKeepUntil"_s)) {
        return std::nullopt;
    }
    store::Statement select(database, uR"(SELECT "Until" FROM "ImgKeepUntil" WHERE "ID" = ?)"_s);
    return select.Bind(1, id).Step() ? std::optional(DayOf(select.Text(0))) : std::nullopt;
}

QHash<qint64, QDate> AllKeptUntil(store::Database& database) {
    QHash<qint64, QDate> days;
    if (database.TableExists(u"ImgKeepUntil"_s)) {
        store::Statement select(database, uR"(SELECT "ID", "Until" FROM "ImgKeepUntil")"_s);
        while (select.Step()) {
            days.insert(select.Integer(0), DayOf(select.Text(1)));
        }
    }
    return days;
}

void SetKeepUntil(store::Database& database, const std::vector<qint64>& ids,
                  std::optional<QDate> until, QDate today) {
    if (until && *until <= today) {
        throw platform::Error(
            u"Das Löschdatum %1 liegt nicht in der Zukunft. Was gleich weg soll, löschen Sie."_s
                .arg(until->toString(u"dd.MM.yyyy"_s)));
    }
    CreateKeeping(database);
    store::Transaction transaction(database);
    for (const qint64 id : ids) {
        store::Statement(database, uR"(DELETE FROM "ImgKeepUntil" WHERE "ID" = ?)"_s)
            .Bind(1, id)
            .Step();
        if (until) {
            store::Statement(database,
                             uR"(INSERT INTO "ImgKeepUntil" ("ID", "Until") VALUES (?, ?))"_s)
                .Bind(1, id)
                .Bind(2, until->toString(Qt::ISODate))
                .Step();
        }
    }
    transaction.Commit();
}

DuePhotos FindDuePhotos(store::Database& database, QDate today) {
    DuePhotos due;
    const std::optional<int> months = RetentionMonths(database);
    const QHash<qint64, QDate> until = AllKeptUntil(database);
    store::Statement select(database,
                            uR"(SELECT "ID", "ImgErstellt", "ImgName" FROM "ImgDB"
                                          WHERE "ImgErstellt" IS NOT NULL ORDER BY "ID")"_s);
    QDate& filed = due.newestFiled;
    DatedPhoto last;
    DatedPhoto newest;
    while (select.Step()) {
        const qint64 id = select.Integer(0);
        const QDate dated = DayOf(select.Text(1));
        const qint64 named = NumberInName(select.Text(2));
        const bool inOrder = named == 0 || named == id;
        if (inOrder) {
            last = {id, dated};
        }
        if (dated > std::max(newest.day, today)) {
            newest = {id, dated};
        }
        if (inOrder && dated <= today) {
            filed = std::max(filed, dated);
        }
        if (IsOver(until.value(id), inOrder ? filed : dated, months, today) &&
            (until.contains(id) || dated <= today)) {
            due.ids.push_back(id);
        }
    }
    if (last.day > today) {
        due.ids.clear();
        due.refusal = LaterThan(last, today) +
                      u" Solange die Uhr nachgeht, ist nichts fällig. Geht sie richtig, hat dieses "
                      u"Bild ein falsches Datum, und nichts ist fällig, bis ein weiteres abgelegt "
                      u"ist."_s;
    } else if (newest.day > today) {
        due.remark = LaterThan(newest, today) + u" Es wird übergangen."_s;
    }
    return due;
}

}  // namespace kadrona::core
