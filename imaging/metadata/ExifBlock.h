#pragma once

#include <QByteArray>
#include <QSize>

#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::imaging {

/// A small TIFF file with what the EXIF standard (CIPA DC-008, tables 4 and 5) demands of a colour
/// picture: resolution in dots per inch, sRGB, size in pixels; and the metadata. An unknown
/// resolution is left out.
///
/// A dozen entries in a fixed order, so they are laid out here. Exiv2 was weighed: it is the only
/// use that the writers would have for it, and it writes into a finished file, which would have to
/// be rewritten as a whole after the codec.
QByteArray ExifBlock(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata);

}  // namespace kadrona::imaging
