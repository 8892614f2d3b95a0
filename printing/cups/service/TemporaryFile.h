#pragma once

#include <QTemporaryFile>

namespace kadrona::printing::cups {

/// Creates the file. Throws ServiceFailure with the system's reason.
void CreateTemporaryFile(QTemporaryFile& file);

}  // namespace kadrona::printing::cups
