#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Decodes a JPEG 2000 file tile by tile: grey or RGB of up to 16 bits a channel, with or without
/// alpha. OpenJPEG takes twelve bytes for each pixel of a tile; a file whose tiles would take too
/// much memory is refused before it gets to see it. Throws ReadError, also where data is missing.
DecodedImage DecodeJpeg2000(const ReadTask& task);

}  // namespace kadrona::imaging
