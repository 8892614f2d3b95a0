#pragma once

#include <QString>
#include <QStringList>

#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"
#include "platform/Error.h"

namespace kadrona::imaging {

/// An image file could not be written. The text names the file and the reason; an older file of
/// that name is untouched.
class WriteError : public platform::FileError {
    using FileError::FileError;
};

/// File name extensions that WriteImageFile knows, lower case, without the dot.
QStringList WritableExtensions();

/// Writes a picture in the format that the extension of `path` names (.jpg .jpeg .jp2 .png .bmp
/// .tif .tiff .pdf), through platform::AtomicFile. The resolution reads back as exactly the integer
/// given; JPEG is written at quality 95, 4:4:4. The metadata is written where the format can hold
/// it. A grid is written row by row and never unrolled. Alpha is laid over white. Throws
/// WriteError.
void WriteImageFile(const QString& path, const Pixels& pixels, DotsPerInch resolution,
                    const WrittenMetadata& metadata = {});

/// The bytes of such a JPEG file. Throws platform::Error.
QByteArray EncodeJpeg(const Pixels& pixels, DotsPerInch resolution = {},
                      const WrittenMetadata& metadata = {});

}  // namespace kadrona::imaging
