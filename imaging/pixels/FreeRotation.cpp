#include "imaging/pixels/FreeRotation.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/core/utility.hpp>

#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/pixels/RotationSampler.h"

namespace kadrona::imaging {

namespace {

/// So near to a quarter turn no pixel of any picture moves by a thousandth.
constexpr double ExactWithin = 1e-6;

/// The number of quarter turns counter-clockwise, 0 ... 3, where the angle is one; else -1.
int QuarterTurns(double degrees) {
    if (!std::isfinite(degrees)) {
        return 0;
    }
    const double quarters = degrees / 90;
    const double nearest = std::round(quarters);
    if (std::abs(quarters - nearest) * 90 > ExactWithin) {
        return -1;
    }
    const int turns = static_cast<int>(std::fmod(nearest, 4));
    return turns < 0 ? turns + 4 : turns;
}

Pixels QuarterTurned(const Pixels& pixels, int turns) {
    Pixels turned = pixels;
    for (int i = 0; i < turns; ++i) {
        turned = Turned(turned, QuarterTurn::CounterClockwise);
    }
    return turned;
}

/// Parts of the canvas that are drawn one after the other: what they show of the source stays in
/// the processor's cache.
constexpr QSize PartSize(256, 64);

QImage Sampled(const QImage& source, QSize size, double degrees, QRgb background) {
    QImage canvas = NewImage(size, source.format());
    const RotationSampler sampler(source, size, degrees, background | 0xff000000);
    uchar* const bits = canvas.bits();
    const qsizetype bytesPerLine = canvas.bytesPerLine();
    const int columns = (size.width() + PartSize.width() - 1) / PartSize.width();
    const int rows = (size.height() + PartSize.height() - 1) / PartSize.height();
    cv::parallel_for_(cv::Range(0, rows), [&](const cv::Range& range) {
        for (int row = range.start; row < range.end; ++row) {
            for (int column = 0; column < columns; ++column) {
                const QPoint corner(column * PartSize.width(), row * PartSize.height());
                sampler.Draw(QRect(corner, PartSize) & canvas.rect(), bits, bytesPerLine);
            }
        }
    });
    return canvas;
}

}  // namespace

QSize RotatedSize(QSize size, double degreesCounterClockwise) {
    const int quarters = QuarterTurns(degreesCounterClockwise);
    if (quarters >= 0) {
        return quarters % 2 == 0 ? size : size.transposed();
    }
    const double angle = degreesCounterClockwise * std::numbers::pi / 180;
    const double cosine = std::abs(std::cos(angle));
    const double sine = std::abs(std::sin(angle));
    // What reaches over a pixel by less than a thousandth does not count.
    const auto length = [](double exact) { return static_cast<int>(std::ceil(exact - 1e-3)); };
    return {std::max(1, length(size.width() * cosine + size.height() * sine)),
            std::max(1, length(size.width() * sine + size.height() * cosine))};
}

Pixels Rotated(const Pixels& pixels, double degreesCounterClockwise, const QColor& background) {
    const int quarters = QuarterTurns(degreesCounterClockwise);
    if (pixels.IsEmpty() || quarters >= 0) {
        return QuarterTurned(pixels, quarters);
    }
    const QSize size = RotatedSize(pixels.Size(), degreesCounterClockwise);
    return Pixels(Sampled(pixels.ToImage(), size, degreesCounterClockwise, background.rgb()));
}

}  // namespace kadrona::imaging
