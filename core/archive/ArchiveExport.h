#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "core/archive/FilingQueue.h"
#include "platform/Progress.h"
#include "store/Database.h"

namespace kadrona::core {

/// What came of an export.
struct Export {
    /// The folder that was made for it.
    QString folder;
    qint64 records = 0;
    /// What could not be copied, a sentence each; the rest was.
    QStringList failures;
};

/// What is exported.
struct ExportSelection {
    std::vector<qint64> ids;
    /// Photos of the queue, by name.
    QStringList waiting = {};
    FilingQueue queue = FilingQueue();
};

/// Copies records, and photos that wait to be such, with all that is kept of them into a new folder
/// below `target`, named after `title`: photos, originals behind "Original_", both behind
/// "Wartend_" and without a number where they wait, each file once, and what the database says of
/// them as "Daten.json" and "Daten.csv" (UTF-8 with a mark, semicolons; a cell that a spreadsheet
/// would take for a formula begins with an apostrophe). Numbers that are no record's are left out.
/// Throws platform::FileError, store::StoreError and platform::Cancelled; nothing of it is left
/// then. The folder's name ends with " (unvollständig)" until all of it is there.
Export ExportRecords(store::Database& database, const QString& archiveFolder,
                     const ExportSelection& selection, const QString& target, const QString& title,
                     const platform::Progress& progress);

/// A cell of a CSV file, in quotes, as one harmless line.
QString CsvCell(QString text);

}  // namespace kadrona::core
