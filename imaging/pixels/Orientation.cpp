#include "imaging/pixels/Orientation.h"

#include <opencv2/core.hpp>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

// OpenCV's codes of cv::flip.
constexpr int FlipVertically = 0;
constexpr int FlipHorizontally = 1;
constexpr int FlipBoth = -1;

QImage Flipped(QImage image, int flipCode) {
    cv::Mat pixels = MatView(image);
    cv::flip(pixels, pixels, flipCode);
    return image;
}

QImage TransposedImage(const QImage& image) {
    QImage transposed = NewImage(image.size().transposed(), image.format());
    cv::Mat target = MatView(transposed);
    cv::transpose(ConstMatView(image), target);
    return transposed;
}

QImage TransposedAndFlipped(const QImage& image, int flipCode) {
    return Flipped(TransposedImage(image), flipCode);
}

}  // namespace

Orientation OrientationFrom(int tagValue) {
    return tagValue >= 1 && tagValue <= 8 ? static_cast<Orientation>(tagValue)
                                          : Orientation::Upright;
}

QImage Uprighted(QImage image, Orientation orientation) {
    switch (orientation) {
        case Orientation::Upright:
            break;
        case Orientation::MirroredHorizontally:
            return Flipped(std::move(image), FlipHorizontally);
        case Orientation::UpsideDown:
            return Flipped(std::move(image), FlipBoth);
        case Orientation::MirroredVertically:
            return Flipped(std::move(image), FlipVertically);
        case Orientation::Transposed:
            return TransposedImage(image);
        case Orientation::NeedsRightTurn:
            return TransposedAndFlipped(image, FlipHorizontally);
        case Orientation::Transversed:
            return TransposedAndFlipped(image, FlipBoth);
        case Orientation::NeedsLeftTurn:
            return TransposedAndFlipped(image, FlipVertically);
    }
    return image;
}

}  // namespace kadrona::imaging
