#include "imaging/pixels/QuarterTurn.h"

#include <opencv2/core.hpp>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

Pixels Turned(const Pixels& pixels, QuarterTurn turn) {
    if (pixels.IsEmpty()) {
        return {};
    }
    const QImage tile = pixels.TileOrWhole();
    QImage turned = NewImage(tile.size().transposed(), tile.format());
    cv::Mat target = MatView(turned);
    cv::rotate(
        ConstMatView(tile), target,
        turn == QuarterTurn::Clockwise ? cv::ROTATE_90_CLOCKWISE : cv::ROTATE_90_COUNTERCLOCKWISE);
    return {turned, pixels.Rows(), pixels.Columns()};
}

}  // namespace kadrona::imaging
