#pragma once

#include <gtest/gtest.h>

#include <QImage>

namespace kadrona::imaging::view::test {

/// Every pixel differs from its neighbours; opaque, and none is white or black.
inline QImage Pattern(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, qRgb(20 + x * 83 % 200, 20 + y * 57 % 200, 20 + x * y * 7 % 200));
        }
    }
    return image;
}

/// Names the first pixel in which two images differ.
inline void ExpectSamePixels(const QImage& actual, const QImage& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            ASSERT_EQ(actual.pixel(x, y), expected.pixel(x, y))
                << std::hex << actual.pixel(x, y) << " instead of " << expected.pixel(x, y)
                << std::dec << " at " << x << ", " << y;
        }
    }
}

}  // namespace kadrona::imaging::view::test
