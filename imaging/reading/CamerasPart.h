#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// What telephones and cameras write, and JPEG 2000. The libraries that decode it are large, and
/// many a file makes them fail: they belong to a part of the program that only a process of its own
/// opens, see DecodingProcess.h. Metafiles go the same way: a few records may ask the painter for
/// any amount of work; and WebP as far as the codes that it is packed with may take any memory.
enum class CameraFormat { Heif, JpegXl, Jpeg2000, Raw, Metafile, WebP };

}  // namespace kadrona::imaging

/// What the part "kadrona-cameras" offers: decodes the file of `task` into `decoded`. Throws
/// ReadError and ReadCancelled.
extern "C" void kadrona_decode_camera_file(kadrona::imaging::CameraFormat format,
                                           const kadrona::imaging::ReadTask& task,
                                           kadrona::imaging::DecodedImage& decoded);

/// Lets the libraries open what they would open with the first file.
extern "C" void kadrona_prepare_camera_files();
