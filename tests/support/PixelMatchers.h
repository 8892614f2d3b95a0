#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QString>
#include <initializer_list>
#include <string_view>

#include "imaging/pixels/Pixels.h"

namespace kadrona::testing {

/// The colour of a letter in a literal picture: red, green, blue, yellow, white, black (k), grey
/// (-), dot for transparent.
inline QRgb ColourOf(char letter) {
    switch (letter) {
        case 'r':
            return 0xffff0000;
        case 'g':
            return 0xff00ff00;
        case 'b':
            return 0xff0000ff;
        case 'y':
            return 0xffffff00;
        case 'w':
            return 0xffffffff;
        case 'k':
            return 0xff000000;
        case '-':
            return 0xff808080;
        case '.':
            return 0x00000000;
        default:
            ADD_FAILURE() << "no colour is called " << letter;
            return 0;
    }
}

/// A picture drawn in letters, one string for each row.
inline QImage Picture(std::initializer_list<std::string_view> rows,
                      QImage::Format format = QImage::Format_RGB32) {
    QImage image(static_cast<int>(rows.begin()->size()), static_cast<int>(rows.size()), format);
    int y = 0;
    for (const std::string_view row : rows) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, ColourOf(row.at(static_cast<size_t>(x))));
        }
        ++y;
    }
    return image;
}

/// Success where the images show the same; else names the first pixel that differs.
inline ::testing::AssertionResult SamePixels(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size()) {
        return ::testing::AssertionFailure()
               << "size is " << actual.width() << " x " << actual.height() << ", expected "
               << expected.width() << " x " << expected.height();
    }
    const auto name = [](QRgb colour) { return QString::number(colour, 16).toStdString(); };
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            if (actual.pixel(x, y) != expected.pixel(x, y)) {
                return ::testing::AssertionFailure()
                       << "pixel (" << x << ", " << y << ") is " << name(actual.pixel(x, y))
                       << ", expected " << name(expected.pixel(x, y))
                       << " (alpha, red, green, blue)";
            }
        }
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult SamePixels(const imaging::Pixels& actual,
                                             const QImage& expected) {
    return SamePixels(actual.ToImage(), expected);
}

}  // namespace kadrona::testing
