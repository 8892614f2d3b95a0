#pragma once

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <ostream>
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

/// A picture in which no row or column repeats and no channel is like another: gradients with a
/// little noise over them.
inline QImage TestPicture(int width, int height, unsigned seed = 1) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525U + 1013904223U;
            const int noise = static_cast<int>(seed >> 28);
            row[x] = qRgb((x + noise) & 255, (2 * y + noise) & 255, (x + y) / 2 & 255);
        }
    }
    return image;
}

/// The picture that a grid stands for, put together pixel by pixel.
inline QImage Unrolled(const QImage& tile, int columns, int rows) {
    QImage image(tile.width() * columns, tile.height() * rows, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, tile.pixel(x % tile.width(), y % tile.height()));
        }
    }
    return image;
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
            const QColor left(a.pixel(x, y));
            const QColor right(b.pixel(x, y));
            largest = std::max({largest, std::abs(left.red() - right.red()),
                                std::abs(left.green() - right.green()),
                                std::abs(left.blue() - right.blue())});
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
