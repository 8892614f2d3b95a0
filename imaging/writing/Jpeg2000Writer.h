#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// JPEG 2000, lossy at the quality of the JPEGs; the resolution stands in its own box and in EXIF.
///
/// OpenJPEG for the codestream, the boxes by hand: its own file has no place for the resolution.
FormatWriter WriteJpeg2000;

}  // namespace kadrona::imaging
