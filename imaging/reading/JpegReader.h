#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Decodes a JPEG file straight into the rows of the result. Throws ReadError, also where the data
/// is incomplete or damaged.
DecodedImage ReadJpeg(const ReadTask& task);

}  // namespace kadrona::imaging
