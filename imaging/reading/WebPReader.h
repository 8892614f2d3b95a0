#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a WebP.
bool IsWebP(QByteArrayView start);

/// Decodes a WebP file, of an animation the first frame, straight into the rows of the result.
/// Throws ReadError, also where the data is incomplete.
DecodedImage ReadWebP(const ReadTask& task);

}  // namespace kadrona::imaging
