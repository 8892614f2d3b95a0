#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Bounds what Qt's plug-ins may allocate for one image, for the whole process: Qt knows no other
/// way. Its own bound is too low for a large photo. The plug-ins that tell an image's size
/// beforehand do not get that far.
void LimitAllocations(qint64 maximumPixels);

/// Decodes a file with Qt's plug-in for `format`, as Qt names it, and with no other, whatever other
/// plug-ins claim of the content: image `index` of the file. Throws ReadError.
DecodedImage ReadByPlugin(const ReadTask& task, const char* format, int index = 0);

}  // namespace kadrona::imaging
