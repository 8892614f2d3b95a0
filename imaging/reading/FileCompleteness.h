#pragma once

#include <QIODevice>

namespace kadrona::imaging {

/// False where a BMP or GIF file ends before its (first) picture does: Qt's plug-ins hand such a
/// picture out without a word, its rest black. True for other formats. Leaves
/// the device where it was.
bool IsComplete(QIODevice& device);

}  // namespace kadrona::imaging
