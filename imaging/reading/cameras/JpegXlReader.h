#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Decodes the first picture of a JPEG XL file with libjxl, at 8 bits a channel. The file's own
/// orientation counts, not that of an EXIF block in it. Throws ReadError.
DecodedImage DecodeJpegXl(const ReadTask& task);

}  // namespace kadrona::imaging
