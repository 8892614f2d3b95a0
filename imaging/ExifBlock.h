#pragma once

#include <QByteArray>
#include <QSize>

#include "imaging/Resolution.h"

namespace kadrona::imaging {

/// Content of a JPEG's APP1 segment with what the EXIF standard (CIPA DC-008, tables 4 and 5)
/// demands of a colour picture: resolution in dots per inch, sRGB, size in pixels.
QByteArray ExifBlock(QSize size, DotsPerInch resolution);

}  // namespace kadrona::imaging
