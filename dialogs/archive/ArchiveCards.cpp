#include "dialogs/archive/ArchiveCards.h"

#include <utility>

#include "core/Data.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

core::ArchiveTable& OpenArchive(core::TData& data) {
    data.ArchiveDatabase();
    return *data.Archive();
}

core::ArchiveRecord ExistingRecord(const core::ArchiveTable& table, qint64 id) {
    auto record = table.Read(id);
    if (!record) {
        throw platform::Error(u"Der Datensatz %1 ist nicht mehr im Archiv."_s.arg(id));
    }
    return *std::move(record);
}

QString ShownTags(const QString& tags) {
    return core::TagLines(tags).join(u", "_s);
}

bool ArchiveCards::SetKeptUntil(QHash<qint64, QDate> days) {
    return std::exchange(keptUntil_, std::move(days)) != keptUntil_;
}

controls::Card ArchiveCards::ReadCard(qint64 key) {
    const core::ArchiveRecord record = ExistingRecord(OpenArchive(data_), key);
    const QDate until = keptUntil_.value(key);
    QStringList detail{record.type};
    if (until.isValid()) {
        detail.append(until.toString(u"'bis' dd.MM.yyyy"_s));
    }
    detail.removeAll(QString());
    return {.heading = core::ShownTime(record.created),
            .title = record.name,
            .detail = detail.join(u" · "_s),
            .text = ShownTags(record.tags)};
}

QByteArray ArchiveCards::ReadPicture(qint64 key) {
    return OpenArchive(data_).ReadThumbnail(key);
}

}  // namespace kadrona::dialogs
