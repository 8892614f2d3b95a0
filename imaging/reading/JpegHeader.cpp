#include "imaging/reading/JpegHeader.h"

#include <QBuffer>

#include "imaging/reading/JpegDecompressor.h"

namespace kadrona::imaging {

std::optional<JpegHeader> ReadJpegHeader(QByteArrayView bytes) try {
    QByteArray content = QByteArray::fromRawData(bytes.data(), bytes.size());
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    JpegDecompressor jpeg(buffer);
    JpegHeader header;
    jpeg.Run([&header](jpeg_decompress_struct* info) {
        jpeg_read_header(info, TRUE);
        header.size = {static_cast<int>(info->image_width), static_cast<int>(info->image_height)};
        header.hasOneScan = jpeg_has_multiple_scans(info) == FALSE;
    });
    return header;
} catch (const JpegFault&) {
    return {};
}

}  // namespace kadrona::imaging
