#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a HEIF: HEIC (what telephones write) or AVIF.
bool IsHeif(QByteArrayView start);
/// True where a file that starts with these bytes is a JPEG XL, by itself or in boxes.
bool IsJpegXl(QByteArrayView start);
/// True where a file that starts with these bytes is a camera's raw file of a kind of its own.
bool IsRaw(QByteArrayView start);
/// True where a TIFF file is a camera's raw file: it says so itself (DNG), or its first picture is
/// a preview of others and a camera made it. Leaves the device where it was.
bool IsRawTiff(QIODevice& device);

/// Decode a file as DecodeHeif, DecodeJpegXl and DecodeRaw of imaging/reading/cameras/ say. Throw
/// ReadError, where that part of the program is missing too, and ReadRaw also ReadCancelled.
DecodedImage ReadHeif(const ReadTask& task);
DecodedImage ReadJpegXl(const ReadTask& task);
DecodedImage ReadRaw(const ReadTask& task);

}  // namespace kadrona::imaging
