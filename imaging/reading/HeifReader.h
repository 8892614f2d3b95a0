#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a HEIF: HEIC (what telephones write) or AVIF.
bool IsHeif(QByteArrayView start);

/// Decodes the primary picture of a HEIF file with libheif, at 8 bits a channel. It comes as the
/// file says that it is to be turned; an EXIF orientation beside that is not applied once more.
/// Throws ReadError.
DecodedImage ReadHeif(const ReadTask& task);

}  // namespace kadrona::imaging
