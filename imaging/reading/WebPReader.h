#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a WebP.
bool IsWebP(QByteArrayView start);

/// Reads a WebP file, of an animation the first frame: by DecodeWebP, in a process of its own
/// where the header does not bound its memory. Throws ReadError, also where the data is incomplete.
DecodedImage ReadWebP(const ReadTask& task);

/// Decodes any WebP file straight into the rows of the result, without its metadata. Throws
/// ReadError and platform::Error.
DecodedImage DecodeWebP(const ReadTask& task);

}  // namespace kadrona::imaging
