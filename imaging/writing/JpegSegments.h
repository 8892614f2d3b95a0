#pragma once

#include <QByteArray>
#include <QSize>
#include <vector>

#include "imaging/codec/JpegErrors.h"
#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::imaging {

/// Whether the profile of sRGB stands in the file, or the EXIF block alone says which colours it
/// has.
enum class ColourProfile { Embedded, LeftOut };

/// What stands in a JPEG file before its picture: the density, which JFIF and EXIF say alike, the
/// profile of sRGB and the metadata.
class JpegSegments {
 public:
    JpegSegments(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata,
                 ColourProfile profile = ColourProfile::Embedded);

    /// Before the compression starts.
    void SetDensity(jpeg_compress_struct& info) const;
    /// Right after it started. Both are steps of libjpeg (JpegErrors).
    void Write(jpeg_compress_struct& info) const;

 private:
    DotsPerInch resolution_;
    QByteArray exif_;
    QByteArray profile_;
    std::vector<QByteArray> iptc_;
};

}  // namespace kadrona::imaging
