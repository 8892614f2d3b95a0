#include "dialogs/ArchiveCards.h"

#include "core/Data.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

core::ArchiveTable& OpenArchive(core::TData& data) {
    core::ArchiveTable* table = data.Archive();
    if (table == nullptr) {
        throw platform::Error(
            u"Das Bildarchiv ist nicht verfügbar, weil seine Datenbank nicht geöffnet werden "
            u"konnte."_s);
    }
    return *table;
}

core::ArchiveRecord ExistingRecord(const core::ArchiveTable& table, qint64 id) {
    auto record = table.Read(id);
    if (!record) {
        throw platform::Error(u"Der Datensatz %1 ist nicht mehr im Archiv."_s.arg(id));
    }
    return *std::move(record);
}

controls::Card ArchiveCards::ReadCard(qint64 key) {
    const core::ArchiveRecord record = ExistingRecord(OpenArchive(data_), key);
    QStringList tags = record.tags.split(u'\n', Qt::SkipEmptyParts);
    for (QString& tag : tags) {
        tag = tag.simplified();
    }
    return {.heading = core::ShownTime(record.created),
            .title = record.name,
            .detail = record.type,
            .text = tags.join(u", "_s)};
}

QByteArray ArchiveCards::ReadPicture(qint64 key) {
    return OpenArchive(data_).ReadThumbnail(key);
}

}  // namespace kadrona::dialogs
