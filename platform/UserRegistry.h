#pragma once

#include <QString>

namespace kadrona::platform {

/// The program's values in the per-user registry, below "Software\Veltmark\Kadrona\Save" (on Linux
/// the group "Save" of the settings file of Veltmark/Kadrona below $XDG_CONFIG_HOME).
/// A missing key or value reads as 0 or empty text; a write that fails is not reported.
int ReadRegistryInteger(const QString& name);
QString ReadRegistryText(const QString& name);
void WriteRegistryInteger(const QString& name, int value);
void WriteRegistryText(const QString& name, const QString& value);

}  // namespace kadrona::platform
