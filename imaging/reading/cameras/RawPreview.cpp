#include "imaging/reading/cameras/RawPreview.h"

#include <libraw/libraw.h>

#include <QBuffer>

#include "imaging/reading/JpegReader.h"

namespace kadrona::imaging {

namespace {

/// The bytes of the preview, owned by `raw`; empty where it is no JPEG.
QByteArray PreviewFile(LibRaw& raw) {
    const libraw_thumbnail_t& preview = raw.imgdata.thumbnail;
    const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
    // No camera makes it larger; LibRaw would take the memory that its size claims.
    const bool isLarger = qint64{preview.twidth} * preview.theight >
                          qint64{sizes.raw_width} * std::max(sizes.raw_height, sizes.height);
    if (isLarger || raw.unpack_thumb() != LIBRAW_SUCCESS ||
        preview.tformat != LIBRAW_THUMBNAIL_JPEG) {
        return {};
    }
    return QByteArray::fromRawData(preview.thumb, static_cast<qsizetype>(preview.tlength));
}

}  // namespace

/// LibRaw counts turns as the files of one maker do.
Orientation RawOrientation(const LibRaw& raw) {
    switch (raw.imgdata.sizes.flip) {
        case 3:
            return Orientation::UpsideDown;
        case 5:
            return Orientation::NeedsLeftTurn;
        case 6:
            return Orientation::NeedsRightTurn;
        default:
            return Orientation::Upright;
    }
}

std::optional<DecodedImage> RawPreview(const ReadTask& task, LibRaw& raw, int shrink) {
    QByteArray file = PreviewFile(raw);
    if (!IsJpeg(file)) {
        return {};
    }
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    ReadOptions options = task.Options();
    options.shrink = shrink;
    try {
        DecodedImage preview = ReadJpeg(task.Within(device, options));
        // What the preview says of itself is often left out or wrong.
        preview.metadata = {};
        preview.metadata.orientation = RawOrientation(raw);
        return preview;
    } catch (const ReadError&) {
        return {};  // the picture itself may be whole
    }
}

}  // namespace kadrona::imaging
