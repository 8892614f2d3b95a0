#include "imaging/writing/RowSource.h"

#include <cstring>
#include <opencv2/imgproc.hpp>

#include "imaging/pixels/LaidOverWhite.h"

namespace kadrona::imaging {

RowSource::RowSource(const Pixels& pixels, ChannelOrder order)
    : tile_(LaidOverWhite(pixels.Tile())),
      columns_(pixels.Columns()),
      rows_(pixels.Rows()),
      order_(order) {}

void RowSource::CopyRow(int y, uchar* target) const {
    // OpenCV has no type for pixels that must not be written.
    auto* row = const_cast<uchar*>(tile_.constScanLine(y % tile_.height()));
    const cv::Mat from(1, tile_.width(), CV_8UC4, row);
    cv::Mat to(1, tile_.width(), CV_8UC3, target);
    cv::cvtColor(from, to,
                 order_ == ChannelOrder::RedFirst ? cv::COLOR_BGRA2RGB : cv::COLOR_BGRA2BGR);

    const auto tileBytes = static_cast<size_t>(tile_.width()) * BytesPerPixel;
    for (int column = 1; column < columns_; ++column) {
        std::memcpy(target + column * tileBytes, target, tileBytes);
    }
}

}  // namespace kadrona::imaging
