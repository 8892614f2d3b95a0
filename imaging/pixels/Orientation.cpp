#include "imaging/pixels/Orientation.h"

#include <opencv2/core.hpp>

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

cv::Mat Wrapped(QImage& image) {
    return {image.height(), image.width(), CV_8UC4, image.bits(),
            static_cast<size_t>(image.bytesPerLine())};
}

// OpenCV's codes of cv::flip.
constexpr int FlipVertically = 0;
constexpr int FlipHorizontally = 1;
constexpr int FlipBoth = -1;

QImage Flipped(QImage image, int flipCode) {
    cv::Mat pixels = Wrapped(image);
    cv::flip(pixels, pixels, flipCode);
    return image;
}

QImage TransposedImage(QImage image) {
    QImage transposed = NewImage(image.size().transposed(), image.format());
    const cv::Mat source = Wrapped(image);
    cv::Mat target = Wrapped(transposed);
    cv::transpose(source, target);
    return transposed;
}

QImage TransposedAndFlipped(QImage image, int flipCode) {
    return Flipped(TransposedImage(std::move(image)), flipCode);
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
            return TransposedImage(std::move(image));
        case Orientation::NeedsRightTurn:
            return TransposedAndFlipped(std::move(image), FlipHorizontally);
        case Orientation::Transversed:
            return TransposedAndFlipped(std::move(image), FlipBoth);
        case Orientation::NeedsLeftTurn:
            return TransposedAndFlipped(std::move(image), FlipVertically);
    }
    return image;
}

}  // namespace kadrona::imaging
