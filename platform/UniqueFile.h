#pragma once

#include <QString>

namespace kadrona::platform {

/// Creates a new empty file in `folder` and returns its bare name: the first three characters of
/// `prefix`, one to four hexadecimal digits, ".tmp". Created exclusively, so two callers (also of
/// two processes) never get the same name. Throws FileError.
QString CreateUniqueFile(const QString& folder, const QString& prefix);

}  // namespace kadrona::platform
