#pragma once

#include <QString>

namespace kadrona::platform {

/// Waits until a new name in `folder` is on the disk. Returns 0 or the system's error code; a file
/// system that cannot tell, and a folder that may be written to but not listed, count as done.
int FlushFolder(const QString& folder);

/// Gives a file or folder, whose content is on the disk already, another name of the same file
/// system, and brings that to the disk; a file of that name is replaced. Throws FileError, and
/// UnflushedError where it has the name but may not keep it over a power cut.
void RenameOnDisk(const QString& from, const QString& to);

}  // namespace kadrona::platform
