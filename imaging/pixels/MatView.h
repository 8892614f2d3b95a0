#pragma once

#include <QImage>
#include <opencv2/core/mat.hpp>

namespace kadrona::imaging {

/// An image of 32 bits a pixel as OpenCV sees it: four channels, blue first. Shares the pixels, so
/// it must not outlive the image.
inline cv::Mat MatView(QImage& image) {
    return {image.height(), image.width(), CV_8UC4, image.bits(),
            static_cast<size_t>(image.bytesPerLine())};
}

/// The same for reading alone: OpenCV has no type for pixels that must not be written.
inline cv::Mat ConstMatView(const QImage& image) {
    return {image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
            static_cast<size_t>(image.bytesPerLine())};
}

}  // namespace kadrona::imaging
