#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Develops a camera's raw file with LibRaw: all its pixels, with the white balance of the camera,
/// in sRGB. It comes as the sensor saw it, with the turn that it is to be given. That takes
/// seconds, of which the task's progress is told. Where the task asks for a shrunk picture, it is
/// the camera's preview if there is one. Throws ReadError and ReadCancelled.
DecodedImage DecodeRaw(const ReadTask& task);

}  // namespace kadrona::imaging
