#pragma once

#include <QString>

namespace kadrona::core {

/// The path without one trailing path separator; unchanged if it does not end in one or is empty.
QString DelLastBackslash(const QString& path);

/// The file name of a path without folder and without extension, with `suffix` appended.
QString GetNameWithSuffix(const QString& path, const QString& suffix);

}  // namespace kadrona::core
