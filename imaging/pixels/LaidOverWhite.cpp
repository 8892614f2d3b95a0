#include "imaging/pixels/LaidOverWhite.h"

#include <opencv2/core/utility.hpp>

#include "imaging/pixels/DividedBy255.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "pixels are taken as B G R A bytes");

QImage Rounded16BitOverWhite(const QImage& image) {
    constexpr qint64 White = 65535;
    QImage result = NewImage(image.size(), QImage::Format_RGB32);
    uchar* const target = result.bits();
    const qsizetype stride = result.bytesPerLine();
    cv::parallel_for_({0, image.height()}, [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            const auto* in = reinterpret_cast<const quint16*>(image.constScanLine(y));
            uchar* out = target + y * stride;
            for (int x = 0; x < image.width(); ++x, in += 4, out += 4) {
                const qint64 alpha = in[3];
                const auto over = [alpha](qint64 channel) {
                    const qint64 sum = channel * alpha + White * (White - alpha);
                    return static_cast<uchar>((sum * 255 + White * White / 2) / (White * White));
                };
                out[0] = over(in[2]);
                out[1] = over(in[1]);
                out[2] = over(in[0]);
                out[3] = 255;
            }
        }
    });
    return result;
}

/// `over(channel, alpha)` is what a channel becomes.
template <typename Over>
void OverWhiteInPlace(QImage& image, Over over) {
    uchar* const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    const qsizetype rowBytes = 4 * qsizetype{image.width()};
    cv::parallel_for_({0, image.height()}, [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            uchar* const row = bits + y * stride;
            for (uchar* pixel = row; pixel < row + rowBytes; pixel += 4) {
                for (int channel = 0; channel < 3; ++channel) {
                    pixel[channel] = static_cast<uchar>(over(pixel[channel], pixel[3]));
                }
                pixel[3] = 255;
            }
        }
    });
    image.reinterpretAsFormat(QImage::Format_RGB32);
}

}  // namespace

QImage LaidOverWhite(QImage image) {
    if (!image.hasAlphaChannel()) {
        return image;
    }
    if (image.format() == QImage::Format_RGBA64) {
        return Rounded16BitOverWhite(image);
    }
    if (!image.isDetached()) {
        image = RequireAllocated(image.copy());
    }
    if (image.format() == QImage::Format_ARGB32_Premultiplied) {
        OverWhiteInPlace(image, [](int channel, int alpha) { return channel + 255 - alpha; });
    } else {
        OverWhiteInPlace(image, [](int channel, int alpha) {
            return DividedBy255(channel * alpha + 255 * (255 - alpha));
        });
    }
    return image;
}

}  // namespace kadrona::imaging
