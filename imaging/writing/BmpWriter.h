#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// 24 bits, not compressed, bottom row first.
///
/// By hand, a header and rows: Qt's writer wants the whole sheet as one picture.
FormatWriter WriteBmp;

}  // namespace kadrona::imaging
