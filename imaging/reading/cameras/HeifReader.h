#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Opens libheif's plug-ins, where it has some.
void PrepareHeif();

/// Decodes the primary picture of a HEIF file with libheif, at 8 bits a channel. It comes as the
/// file says that it is to be turned; an EXIF orientation beside that is not applied once more.
/// Throws ReadError.
DecodedImage DecodeHeif(const ReadTask& task);

}  // namespace kadrona::imaging
