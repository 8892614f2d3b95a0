#include "imaging/tone/PixelFilter.h"

#include <cstring>
#include <opencv2/core/utility.hpp>

#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/StraightAlpha.h"

namespace kadrona::imaging {

Pixels Filtered(const Pixels& pixels, const PixelFilter& filter) {
    if (pixels.IsEmpty()) {
        return pixels;
    }
    const QImage source = StraightAlpha(pixels);
    QImage filtered = NewImage(source.size(), source.format());
    uchar* const bits = filtered.bits();
    const qsizetype bytesPerLine = filtered.bytesPerLine();
    const auto width = static_cast<size_t>(source.width());
    cv::parallel_for_(cv::Range(0, source.height()), [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            auto* row = reinterpret_cast<QRgb*>(bits + y * bytesPerLine);
            std::memcpy(row, source.constScanLine(y), width * sizeof(QRgb));
            filter.Apply({row, width});
        }
    });
    return {std::move(filtered), pixels.Columns(), pixels.Rows()};
}

}  // namespace kadrona::imaging
