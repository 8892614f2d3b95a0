#pragma once

#include <QWidget>

#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging::view::test {

/// Every pixel differs from its neighbours; opaque, and none is white or black.
inline QImage Pattern(QSize size) {
    return testing::Painted(size, [](int x, int y) {
        return qRgb(20 + x * 83 % 200, 20 + y * 57 % 200, 20 + x * y * 7 % 200);
    });
}

inline QImage Grabbed(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace kadrona::imaging::view::test
