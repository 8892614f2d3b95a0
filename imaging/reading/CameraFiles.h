#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a HEIF: HEIC (what telephones write) or AVIF.
bool IsHeif(QByteArrayView start);
/// True where a file that starts with these bytes is a JPEG XL, by itself or in boxes.
bool IsJpegXl(QByteArrayView start);
/// True where a file that starts with these bytes is JPEG 2000: a JP2 file or a bare codestream.
bool IsJpeg2000(QByteArrayView start);
/// True where a file that starts with these bytes is a camera's raw file of a kind of its own.
bool IsRaw(QByteArrayView start);
/// True where a TIFF file is a camera's raw file: it says so itself (DNG), or its first picture is
/// a preview of others and a camera made it. Leaves the device where it was.
bool IsRawTiff(QIODevice& device);

/// Decode a file as DecodeHeif, DecodeJpegXl, DecodeJpeg2000 and DecodeRaw of
/// imaging/reading/cameras/, DrawMetafile and DecodeWebP say, in a process of its own
/// (DecodingProcess.h). Throw ReadError, where a part of the program is missing too, and
/// ReadCancelled.
DecodedImage ReadHeif(const ReadTask& task);
DecodedImage ReadJpegXl(const ReadTask& task);
DecodedImage ReadJpeg2000(const ReadTask& task);
DecodedImage ReadRaw(const ReadTask& task);
DecodedImage ReadMetafile(const ReadTask& task);
DecodedImage ReadPackedWebP(const ReadTask& task);

/// From now on these decode in this process, without its limits: for what watches the decoding
/// itself, as fuzzers do.
void DecodeCameraFilesHere();

}  // namespace kadrona::imaging
