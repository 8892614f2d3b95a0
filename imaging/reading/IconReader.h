#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is an icon file (ICO).
bool IsIcon(QByteArrayView start);

/// Decodes the largest image of an icon file, a PNG inside with ReadPng, a bitmap with Qt's
/// plug-in. Throws ReadError.
DecodedImage ReadIcon(const ReadTask& task);

}  // namespace kadrona::imaging
