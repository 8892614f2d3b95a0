#include "imaging/writing/JpegSegments.h"

#include "imaging/metadata/ExifBlock.h"
#include "imaging/metadata/PhotoshopBlock.h"
#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

namespace {

void WriteSegment(jpeg_compress_struct& info, int marker, const QByteArray& content) {
    jpeg_write_marker(&info, marker, reinterpret_cast<const JOCTET*>(content.constData()),
                      static_cast<unsigned>(content.size()));
}

}  // namespace

JpegSegments::JpegSegments(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata,
                           ColourProfile profile)
    : resolution_(resolution),
      profile_(profile == ColourProfile::Embedded ? SrgbProfile() : QByteArray()),
      iptc_(PhotoshopSegments(WithIptcStream({}, EncodeIptc(metadata.iptc)))) {
    if (resolution.value > 0 || !metadata.software.isEmpty()) {
        exif_ = QByteArray("Exif\0\0", 6) + ExifBlock(size, resolution, metadata);
    }
}

void JpegSegments::SetDensity(jpeg_compress_struct& info) const {
    constexpr UINT8 AspectRatio = 0;
    constexpr UINT8 PerInch = 1;
    const bool known = resolution_.value > 0;
    info.density_unit = known ? PerInch : AspectRatio;
    info.X_density = info.Y_density = static_cast<UINT16>(known ? resolution_.value : 1);
}

void JpegSegments::Write(jpeg_compress_struct& info) const {
    if (!exif_.isEmpty()) {
        WriteSegment(info, JPEG_APP0 + 1, exif_);
    }
    if (!profile_.isEmpty()) {
        jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(profile_.constData()),
                               static_cast<unsigned>(profile_.size()));
    }
    for (const QByteArray& segment : iptc_) {
        WriteSegment(info, JPEG_APP0 + 13, segment);
    }
}

}  // namespace kadrona::imaging
