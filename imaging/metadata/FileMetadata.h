#pragma once

#include <QByteArrayView>
#include <QIODevice>

#include "imaging/metadata/Iptc.h"
#include "imaging/pixels/Orientation.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::imaging {

/// What stands beside the pixels of an image file.
struct FileMetadata {
    Orientation orientation = Orientation::Upright;
    DotsPerInch resolution;
    /// Of JPEG files alone.
    IptcItems iptc = {};
};

/// A resolution rounded to an integer; unknown where it is not a sensible one.
DotsPerInch ResolutionFrom(double dotsPerInch);

/// Reads the metadata of a PNG (pHYs, eXIf), TIFF, WebP (EXIF), JP2 (EXIF) or BMP file. Damaged or
/// missing metadata is the default, never an error. Moves the device.
///
/// Only three tags are of interest and all stand in the first directory. Exiv2 was weighed: it
/// walks the whole block (maker notes, previews), which may come from anywhere, and reads the file
/// anew.
FileMetadata ReadFileMetadata(QIODevice& device);

/// The ICC profile of a PNG file; empty where there is none or it is damaged. Moves the device.
QByteArray ReadPngProfile(QIODevice& device);

/// Reads the metadata of an EXIF block, which is a small TIFF file.
FileMetadata ReadExif(QByteArrayView block);

}  // namespace kadrona::imaging
