#pragma once

#include <QString>

namespace kadrona::platform {

/// Waits until the content of an open file is on the disk. Returns 0 or the system's error code;
/// a file system that cannot tell counts as done.
int FlushToDisk(int fileHandle);

/// Waits, where the system has a way to, until a rename in `folder` is on the disk. Failures are
/// ignored: the file is whole under its old or its new name either way.
void FlushFolder(const QString& folder);

}  // namespace kadrona::platform
