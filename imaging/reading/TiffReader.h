#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a TIFF, also one whose offsets have 64 bits.
bool IsTiff(QByteArrayView start);

/// Decodes the first page of a TIFF file. Rows of 16 bits a channel become sRGB of 8 bits while
/// they are read; all other kinds are left to the toolkit's plug-in. Throws ReadError.
DecodedImage ReadTiff(const ReadTask& task);

}  // namespace kadrona::imaging
