#pragma once

#include <QTemporaryFile>

namespace kadrona::printing::cups {

/// Creates the file. Throws ServiceFailure with the system's reason.
void CreateTemporaryFile(QTemporaryFile& file);

/// Where this program and those that it starts read the file as long as it is open here. Unlike
/// fileName() it gives the file no name among the temporary ones, so that no page is left there
/// however the program ends.
QString PathOf(const QTemporaryFile& file);

}  // namespace kadrona::printing::cups
