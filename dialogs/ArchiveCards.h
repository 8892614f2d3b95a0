#pragma once

#include "controls/cards/CardSource.h"
#include "core/archive/ArchiveTable.h"

namespace kadrona::dialogs {

/// The records of the archive as cards, their keys the record numbers.
class ArchiveCards : public controls::CardSource {
 public:
    /// `table` outlives the cards.
    explicit ArchiveCards(const core::ArchiveTable& table) : table_(table) {}

    controls::Card ReadCard(qint64 key) override;
    QByteArray ReadPicture(qint64 key) override { return table_.ReadThumbnail(key); }

 private:
    const core::ArchiveTable& table_;
};

/// The record of that number. Throws platform::Error where there is none any more.
core::ArchiveRecord ExistingRecord(const core::ArchiveTable& table, qint64 id);

}  // namespace kadrona::dialogs
