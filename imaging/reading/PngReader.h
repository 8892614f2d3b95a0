#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a PNG.
bool IsPng(QByteArrayView start);

/// Decodes a PNG file straight into the rows of the result. Throws ReadError, also where the data
/// is incomplete or damaged.
///
/// With libpng itself, because Qt's plug-in unpacks every text of the file, gigabytes of a small
/// one, and takes a gamma of 1/2.2 for another curve than that of sRGB, which is what programs mean
/// by it.
DecodedImage ReadPng(const ReadTask& task);

}  // namespace kadrona::imaging
