#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "imaging/pixels/Pixels.h"

namespace kadrona::testing {

/// What the program writes, in the folders of an installation below one folder.
struct Operation {
    QString name;
    /// Puts into the folder what stands there before. Nothing fails meanwhile.
    std::function<void(const QString& folder)> prepare;
    /// Makes ready what is in memory, and returns the operation, which may throw. Messages that it
    /// shows go into `messages`.
    std::function<std::function<void()>(const QString& folder, QStringList& messages)> begin;
    /// It is there to remove files, so that removing one may fail too.
    bool removes = false;
};

std::vector<Operation> AllOperations();

/// What is wrong with the archive below the folder: a damaged database, an index of words that is
/// not that of the records, photos without a record or records without their photo. Empty where all
/// is well or there is none.
QString ArchiveFault(const QString& folder);

}  // namespace kadrona::testing
