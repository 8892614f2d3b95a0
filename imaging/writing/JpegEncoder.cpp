#include "imaging/writing/JpegEncoder.h"

#include <QByteArrayView>
#include <algorithm>
#include <array>

#include "imaging/writing/JpegCompressor.h"
#include "imaging/writing/JpegSegments.h"

namespace kadrona::imaging {

namespace {

constexpr JpegCoding RestartEachRow{.restartEachRow = true};

/// Cuts a scan at its markers; what follows the last of them is left out.
std::vector<QByteArray> SplitAtMarkers(QByteArrayView scan) {
    std::vector<QByteArray> parts;
    qsizetype begin = 0;
    qsizetype at = scan.indexOf('\xff');
    while (at >= 0 && at + 1 < scan.size()) {
        // A 0xff of the data itself has a zero behind it.
        if (scan[at + 1] != '\0') {
            parts.push_back(scan.sliced(begin, at - begin).toByteArray());
            begin = at + 2;
        }
        at = scan.indexOf('\xff', at + 2);
    }
    return parts;
}

}  // namespace

QByteArray EncodeJpegHeader(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata) {
    const JpegSegments segments(size, resolution, metadata);
    JpegCompressor compressor;
    compressor.Start(size, RestartEachRow, [&](jpeg_compress_struct& info) {
        segments.SetDensity(info);
        jpeg_start_compress(&info, TRUE);
        segments.Write(info);
    });
    return compressor.Output().toByteArray();
}

std::vector<QByteArray> EncodeMcuRows(const RowSource& rows, int first, int count) {
    const int firstRow = first * McuRowHeight;
    const int height = std::min(count * McuRowHeight, rows.Height() - firstRow);
    const auto stride = static_cast<size_t>(rows.BytesPerRow());
    std::vector<uchar> pixels(stride * McuRowHeight);
    std::array<JSAMPROW, McuRowHeight> pointers{};
    for (size_t row = 0; row < pointers.size(); ++row) {
        pointers[row] = pixels.data() + row * stride;
    }

    JpegCompressor compressor;
    compressor.Start({rows.Width(), height}, RestartEachRow, [](jpeg_compress_struct& info) {
        info.write_JFIF_header = FALSE;
        jpeg_start_compress(&info, TRUE);
    });
    const qsizetype headerBytes = compressor.Output().size();
    compressor.Run([&](jpeg_compress_struct& info) {
        for (int y = 0; y < height; y += McuRowHeight) {
            const int present = std::min(McuRowHeight, height - y);
            for (int row = 0; row < present; ++row) {
                rows.CopyRow(firstRow + y + row, pointers[static_cast<size_t>(row)]);
            }
            jpeg_write_scanlines(&info, pointers.data(), static_cast<JDIMENSION>(present));
        }
        jpeg_finish_compress(&info);
    });
    return SplitAtMarkers(compressor.Output().sliced(headerBytes));
}

}  // namespace kadrona::imaging
