#pragma once

#include <QString>
#include <optional>

namespace kadrona::platform {

/// Shows on the program's entry in the taskbar how far a long work is, from 0 to 1; nothing takes
/// it away. `desktopFile` is the name of the program's desktop file. Does nothing where there is no
/// session bus; panels that know the signal are those of KDE, Ubuntu and others
/// (https://wiki.ubuntu.com/Unity/LauncherAPI, "Low level DBus API").
void ShowTaskbarProgress(const QString& desktopFile, std::optional<double> share);

}  // namespace kadrona::platform
