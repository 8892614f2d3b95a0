#pragma once

#include <QIODevice>
#include <QString>

#include "imaging/metadata/Iptc.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"
#include "imaging/reading/ReadError.h"

namespace kadrona::imaging {

struct LoadedImage {
    /// sRGB, opaque (alpha is laid over white).
    Pixels pixels;
    /// What the file says; 0 where it says nothing.
    DotsPerInch resolution;
    /// IPTC metadata of a JPEG file; of other files none is read.
    IptcItems iptc = {};
};

/// Reads an image file: JPEG (also CMYK), PNG and TIFF (also 16 bits a channel), GIF, BMP, ICO,
/// WMF, EMF, WebP, HEIF, JPEG 2000, JPEG XL and raw files of cameras, and nothing else whatever
/// plug-ins are installed. The first page or frame.
/// The content decides the format, not the name. Embedded profiles are brought to sRGB. Throws
/// ReadError.
LoadedImage ReadImageFile(const QString& path, const ReadOptions& options = {});

/// The same from an open device with random access, from its start; `name` stands for the file in
/// the text of an error.
LoadedImage ReadImage(QIODevice& device, const QString& name, const ReadOptions& options = {});

/// True where reading a file may take long and be given up, as of cameras' raw files; false where
/// it cannot be opened.
bool CanGiveUpFile(const QString& path);
/// The same of an open device with random access, which stays at its start.
bool CanGiveUp(QIODevice& device);

}  // namespace kadrona::imaging
