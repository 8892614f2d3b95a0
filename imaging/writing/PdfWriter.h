#pragma once

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

/// One page as large as the picture, at 72 dots per inch where the resolution is unknown; lossless.
/// An arrangement's pictures stand in it once each.
///
/// By PdfFile, which says why not by QPdfWriter.
FormatWriter WritePdf;

}  // namespace kadrona::imaging
