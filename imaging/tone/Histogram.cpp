#include "imaging/tone/Histogram.h"

#include <mutex>
#include <opencv2/core/utility.hpp>

#include "imaging/pixels/StraightAlpha.h"
#include "imaging/tone/Luma.h"

namespace kadrona::imaging {

namespace {

void CountRow(const QRgb* row, int width, Histogram& histogram) {
    for (int x = 0; x < width; ++x) {
        const QRgb pixel = row[x];
        ++histogram.red[(pixel >> 16) & 0xff];
        ++histogram.green[(pixel >> 8) & 0xff];
        ++histogram.blue[pixel & 0xff];
        ++histogram.luma[static_cast<size_t>(Luma(pixel))];
    }
}

void Add(const LevelCounts& counts, LevelCounts& sum) {
    for (size_t level = 0; level < sum.size(); ++level) {
        sum[level] += counts[level];
    }
}

}  // namespace

Histogram HistogramOf(const Pixels& pixels) {
    Histogram sum;
    if (pixels.IsEmpty()) {
        return sum;
    }
    const QImage image = StraightAlpha(pixels);
    std::mutex sumMutex;
    cv::parallel_for_(cv::Range(0, image.height()), [&](const cv::Range& rows) {
        Histogram part;
        for (int y = rows.start; y < rows.end; ++y) {
            CountRow(reinterpret_cast<const QRgb*>(image.constScanLine(y)), image.width(), part);
        }
        const std::lock_guard lock(sumMutex);
        Add(part.red, sum.red);
        Add(part.green, sum.green);
        Add(part.blue, sum.blue);
        Add(part.luma, sum.luma);
    });
    return sum;
}

}  // namespace kadrona::imaging
