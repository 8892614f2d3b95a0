#pragma once

#include <QString>

namespace kadrona::core {

/// The property file of a profile's additions, beside its settings file: the same path with the
/// extension "additions". Empty for an empty path.
QString AdditionsFile(const QString& settingsFile);

}  // namespace kadrona::core
