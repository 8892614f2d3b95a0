#pragma once

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// True where a file that starts with these (at least 44) bytes is an EMF or a WMF.
bool IsMetafile(QByteArrayView start);

/// Draws a Windows metafile (EMF or WMF, placeable or not) on white. EMF comes in the resolution of
/// the device that it was recorded on, WMF in 96 dots per inch; both finer where a bitmap in them
/// has more pixels, and coarser where that would be over the allowed size. Throws ReadError, also
/// where the file is incomplete, has records that are not drawn, or shows nothing.
DecodedImage DrawMetafile(const ReadTask& task);

}  // namespace kadrona::imaging
