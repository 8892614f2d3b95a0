#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// 24 bits, deflate with horizontal differences: unlike LZW it finds the copies of a sheet.
///
/// libtiff itself: Qt's writer wants the whole sheet as one picture and compresses with LZW alone.
FormatWriter WriteTiff;

}  // namespace kadrona::imaging
