#pragma once

#include <QDate>
#include <QHash>

#include "controls/cards/CardSource.h"
#include "core/archive/ArchiveTable.h"

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

/// The records of the archive as cards, their keys the record numbers.
class ArchiveCards : public controls::CardSource {
 public:
    /// `data` outlives the cards.
    explicit ArchiveCards(core::TData& data) : data_(data) {}

    /// The last days of those photos that have one of their own, which is shown. True where these
    /// are others than before.
    bool SetKeptUntil(QHash<qint64, QDate> days);

    controls::Card ReadCard(qint64 key) override;
    QByteArray ReadPicture(qint64 key) override;

 private:
    core::TData& data_;
    QHash<qint64, QDate> keptUntil_;
};

/// Tags on one line.
QString ShownTags(const QString& tags);

/// The table of the archive. Throws platform::Error where there is none (any more).
core::ArchiveTable& OpenArchive(core::TData& data);

/// The record of that number. Throws platform::Error where there is none any more.
core::ArchiveRecord ExistingRecord(const core::ArchiveTable& table, qint64 id);

}  // namespace kadrona::dialogs
