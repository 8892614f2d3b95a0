#pragma once

#include <optional>

#include "imaging/reading/ReadTask.h"

class LibRaw;

namespace kadrona::imaging {

/// The JPEG that a camera keeps in its raw file beside the data of the sensor, decoded with
/// `shrink` as ReadOptions says, and turned as the picture itself is to be. Nothing where there is
/// none of use. `raw` is open; the bytes of the preview are taken out of the file once more.
std::optional<DecodedImage> RawPreview(const ReadTask& task, LibRaw& raw, int shrink);

/// The turn that the picture of an open raw file is to be given.
Orientation RawOrientation(const LibRaw& raw);

}  // namespace kadrona::imaging
