#pragma once

#include <sys/types.h>

#include <QString>

/// Who may read and write what the program makes. Its files hold faces and names, so they are the
/// user's alone; only a folder whose set-group bit is set says that its group shares them.
namespace kadrona::platform {

/// Permissions of a new file in `folder`: 0660 or 0600.
mode_t ModeOfNewFile(const QString& folder);

/// Permissions of a new folder in `folder`: 02770, so that what is in it is shared too, or 0700.
mode_t ModeOfNewFolder(const QString& folder);

}  // namespace kadrona::platform
