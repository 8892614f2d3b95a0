#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <ostream>
#include <string_view>

#include "imaging/pixels/Pixels.h"

namespace kadrona::testing {

/// The colour of a letter in a literal picture: red, green, blue, yellow, white, black (k), grey
/// (-), dot for transparent. Another letter ends the test.
inline QRgb ColourOf(char letter) {
    static const std::map<char, QRgb> colours{
        {'r', 0xffff0000}, {'g', 0xff00ff00}, {'b', 0xff0000ff}, {'y', 0xffffff00},
        {'w', 0xffffffff}, {'k', 0xff000000}, {'-', 0xff808080}, {'.', 0x00000000}};
    return colours.at(letter);
}

/// A picture with the colour that `colourAt(x, y)` gives each pixel.
template <typename Function>
QImage Painted(QSize size, const Function& colourAt, QImage::Format format = QImage::Format_RGB32) {
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, colourAt(x, y));
        }
    }
    return image;
}

inline QImage Filled(QSize size, QRgb colour, QImage::Format format = QImage::Format_RGB32) {
    return Painted(
        size, [colour](int, int) { return colour; }, format);
}

/// A picture drawn in letters, one string for each row.
inline QImage Picture(std::initializer_list<std::string_view> rows,
                      QImage::Format format = QImage::Format_RGB32) {
    const QSize size(static_cast<int>(rows.begin()->size()), static_cast<int>(rows.size()));
    return Painted(
        size, [&](int x, int y) { return ColourOf(rows.begin()[y].at(static_cast<size_t>(x))); },
        format);
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

/// A picture in which no row or column repeats and no channel is like another: gradients with a
/// little noise over them.
inline QImage TestPicture(int width, int height, unsigned seed = 1) {
    return Painted({width, height}, [&](int x, int y) {
        seed = seed * 1664525U + 1013904223U;
        const int noise = static_cast<int>(seed >> 28);
        return qRgb((x + noise) & 255, (2 * y + noise) & 255, (x + y) / 2 & 255);
    });
}

/// The picture that a grid stands for, put together pixel by pixel.
inline QImage Unrolled(const QImage& tile, int columns, int rows) {
    return Painted({tile.width() * columns, tile.height() * rows},
                   [&](int x, int y) { return tile.pixel(x % tile.width(), y % tile.height()); });
}

/// The largest difference of a channel inside `area`; 255 where a size is wrong.
inline int LargestDifference(const QImage& a, const QImage& b, const QRect& area) {
    if (a.size() != b.size() || !a.rect().contains(area)) {
        ADD_FAILURE() << "sizes differ";
        return 255;
    }
    int largest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QRgb left = a.pixel(x, y);
            const QRgb right = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(left) - qRed(right)),
                                std::abs(qGreen(left) - qGreen(right)),
                                std::abs(qBlue(left) - qBlue(right))});
        }
    }
    return largest;
}

inline int LargestDifference(const QImage& a, const QImage& b) {
    return LargestDifference(a, b, a.rect());
}

}  // namespace kadrona::testing

// Sizes and places in the words of a failed test. Found by the argument's own namespace, which is
// the global one.
inline void PrintTo(const QSize& size, std::ostream* stream) {
    *stream << size.width() << " x " << size.height();
}

inline void PrintTo(const QRect& rectangle, std::ostream* stream) {
    *stream << rectangle.width() << " x " << rectangle.height() << " at " << rectangle.x() << ", "
            << rectangle.y();
}

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}
