#pragma once

#include <QString>

namespace kadrona::core {

/// The archive's folder, one for the user and kept in the registry; empty where none was set.
QString ArchiveFolder();
void SetArchiveFolder(const QString& folder);

}  // namespace kadrona::core
