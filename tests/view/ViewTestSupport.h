#pragma once

#include <QImage>

#include "tests/support/PixelMatchers.h"

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

using kadrona::testing::SamePixels;

}  // namespace kadrona::imaging::view::test
