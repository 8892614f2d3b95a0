#pragma once

#include "imaging/ReadTask.h"

namespace kadrona::imaging {

/// Decodes a file with Qt's image plug-ins, which tell its format from its content: the first page
/// or frame, of an icon file the largest image. Documents that draw (SVG, PDF) are refused: they
/// are no photos, and may name other files. Throws ReadError.
DecodedImage ReadByPlugin(const ReadTask& task);

}  // namespace kadrona::imaging
