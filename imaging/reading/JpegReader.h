#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a JPEG.
bool IsJpeg(QByteArrayView start);

/// Decodes a JPEG file straight into the rows of the result. Throws ReadError, also where the data
/// is incomplete or damaged.
DecodedImage ReadJpeg(const ReadTask& task);

}  // namespace kadrona::imaging
