#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// What telephones and cameras write. The libraries that decode it are large: they belong to a part
/// of the program that is opened when the first such file is read.
enum class CameraFormat { Heif, JpegXl, Raw };

}  // namespace kadrona::imaging

/// What the part "kadrona-cameras" offers: decodes the file of `task` into `decoded`. Throws
/// ReadError and ReadCancelled.
extern "C" void kadrona_decode_camera_file(kadrona::imaging::CameraFormat format,
                                           const kadrona::imaging::ReadTask& task,
                                           kadrona::imaging::DecodedImage& decoded);
