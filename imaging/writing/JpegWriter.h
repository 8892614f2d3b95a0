#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// Baseline, quality 95, 4:4:4; the resolution stands in JFIF and in EXIF.
///
/// libjpeg in pieces (JpegEncoder.h): Qt's writer offers neither 4:4:4 nor exact dots per inch.
FormatWriter WriteJpeg;

}  // namespace kadrona::imaging
