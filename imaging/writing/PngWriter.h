#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// 24 bits.
///
/// libpng itself: Qt's writer wants the whole sheet as one picture and says nothing of sRGB.
FormatWriter WritePng;

}  // namespace kadrona::imaging
