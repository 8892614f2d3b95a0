#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a camera's raw file of a kind of its own.
bool IsRaw(QByteArrayView start);

/// True where a TIFF file is a camera's raw file: it says so itself (DNG), or its first picture is
/// a preview of others and a camera made it. Leaves the device where it was.
bool IsRawTiff(QIODevice& device);

/// Develops a camera's raw file with LibRaw: all its pixels, with the white balance of the camera,
/// in sRGB. It comes as the sensor saw it, with the turn that it is to be given. That takes
/// seconds, of which the task's progress is told. Where the task asks for a shrunk picture, it is
/// the camera's preview if there is one. Throws ReadError and ReadCancelled.
DecodedImage ReadRaw(const ReadTask& task);

}  // namespace kadrona::imaging
