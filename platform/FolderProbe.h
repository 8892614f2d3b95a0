#pragma once

#include <QString>
#include <chrono>

namespace kadrona::platform {

/// Silent is a folder of a share or disk that does not answer: whoever uses it waits with it.
enum class FolderState { There, Missing, Silent };

/// Long enough for a slow share, short enough for a window that stands still meanwhile.
inline constexpr std::chrono::milliseconds FolderPatience(1000);

/// Looks whether there is a folder, but no longer than `patience`. A process of its own looks, for
/// nothing else can be given up: where the folder is silent, it stays until the system lets it go.
FolderState LookAtFolder(const QString& path, std::chrono::milliseconds patience = FolderPatience);

}  // namespace kadrona::platform
