#pragma once

#include <QString>
#include <optional>

#include "core/archive/FiledFiles.h"
#include "store/Database.h"

namespace kadrona::core {

/// Nothing where none is kept. Throws store::StoreError.
std::optional<OriginalRecord> ReadOriginal(store::Database& database, qint64 id);

/// Keeps the original of a record, whose file is in the archive already. Throws store::StoreError.
void KeepOriginal(store::Database& database, qint64 id, const OriginalRecord& original);

/// Puts an original into the archive's folder for the photo of that name and month, in a folder of
/// its own: "Originale\2026\03\2026_03_00042.jpg", with the extension of the file, and another
/// name where that one is taken. Where the file cannot be read or is another one by now, the pixels
/// are kept. Throws platform::FileError, where there are none too; nothing is left then.
OriginalRecord FileOriginal(const OriginalToKeep& original, const QString& archiveFolder,
                            const QString& monthFolder, const QString& photoName);

}  // namespace kadrona::core
