#pragma once

#include <QIODevice>
#include <optional>

namespace kadrona::imaging {

/// The samples of the largest block; most pictures are coded in such.
inline constexpr int UsualJpeg2000Block = 64 * 64;

/// The samples of the smallest block or precinct in which any header of a JPEG 2000 codestream lets
/// its picture be coded (ITU-T T.800, A.6.1 and A.6.2), at least 1: the library keeps hundreds of
/// bytes for each. `codestream` is where it begins. None where the headers make no sense, which
/// includes those that the library would have to look for. Moves the device.
std::optional<int> SmallestJpeg2000Block(QIODevice& device, qint64 codestream);

}  // namespace kadrona::imaging
