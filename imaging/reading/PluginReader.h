#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Bounds what Qt's plug-ins may allocate for one image, for the whole process: Qt knows no other
/// way. Its own bound is too low for a large photo. The plug-ins that tell an image's size
/// beforehand do not get that far.
void LimitAllocations(qint64 maximumPixels);

/// Decodes a file with Qt's image plug-ins, which tell its format from its content: the first page
/// or frame, of an icon file the largest image. Documents that draw (SVG, PDF) are refused, as they
/// may name other files, and so are Apple's icons. Throws ReadError.
DecodedImage ReadByPlugin(const ReadTask& task);

}  // namespace kadrona::imaging
