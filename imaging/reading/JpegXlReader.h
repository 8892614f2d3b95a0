#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a JPEG XL, by itself or in boxes.
bool IsJpegXl(QByteArrayView start);

/// Decodes the first picture of a JPEG XL file with libjxl, at 8 bits a channel. The file's own
/// orientation counts, not that of an EXIF block in it. Throws ReadError.
DecodedImage ReadJpegXl(const ReadTask& task);

}  // namespace kadrona::imaging
