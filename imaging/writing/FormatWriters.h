#pragma once

#include <QIODevice>

#include "imaging/metadata/ImageMetadata.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

/// One function for each file format that WriteImageFile knows. They write rows as they come, so
/// that a sheet takes the memory of a few rows; an alpha channel is laid over white; the picture is
/// marked as sRGB and carries the metadata where the format can. An unknown resolution is left out
/// of the file.
///
/// `device` is open for writing, random access and empty. `pixels` is not empty. What fails throws
/// platform::Error with the bare reason, without the file's name.
namespace kadrona::imaging {

/// Baseline, quality 95, 4:4:4; the resolution stands in JFIF and in EXIF.
void WriteJpeg(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
               const ImageMetadata& metadata);

/// 24 bits.
void WritePng(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const ImageMetadata& metadata);

/// 24 bits, not compressed, bottom row first.
void WriteBmp(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const ImageMetadata& metadata);

/// 24 bits, deflate with horizontal differences: unlike LZW it finds the copies of a sheet.
void WriteTiff(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
               const ImageMetadata& metadata);

/// JPEG 2000, lossy at the quality of the JPEGs; the resolution stands in its own box and in EXIF.
void WriteJpeg2000(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
                   const ImageMetadata& metadata);

/// One page as large as the picture, at 72 dots per inch where the resolution is unknown; lossless.
void WritePdf(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const ImageMetadata& metadata);

/// Appends to a file. Throws platform::Error with the system's reason.
void WriteBytes(QIODevice& device, const void* bytes, qint64 count);

/// Why the last write failed, as a German sentence.
QString FailureOf(const QIODevice& device);

/// The nearest whole number of dots per metre. It is at most 0.013 dots per inch off, so that a
/// reader that rounds gets every resolution back.
int DotsPerMetre(DotsPerInch resolution);

/// The ICC profile of sRGB.
QByteArray SrgbProfile();

}  // namespace kadrona::imaging
