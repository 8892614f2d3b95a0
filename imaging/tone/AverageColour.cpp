#include "imaging/tone/AverageColour.h"

#include <opencv2/core.hpp>

#include "imaging/pixels/MatView.h"

namespace kadrona::imaging {

namespace {

int RoundedQuotient(double sum, qint64 count) {
    return static_cast<int>((2 * static_cast<qint64>(sum) + count) / (2 * count));
}

}  // namespace

AverageColour AverageOf(const Pixels& pixels) {
    if (pixels.IsEmpty()) {
        return {};
    }
    const QImage tile = pixels.TileOrWhole();
    // Sums of bytes stay exact in a double up to 2^53, far above any picture.
    const cv::Scalar sums = cv::sum(ConstMatView(tile));
    const qint64 count = qint64{tile.width()} * tile.height();
    return {RoundedQuotient(sums[2], count), RoundedQuotient(sums[1], count),
            RoundedQuotient(sums[0], count)};
}

}  // namespace kadrona::imaging
