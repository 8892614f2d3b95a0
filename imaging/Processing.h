#pragma once

#include <QColor>
#include <QRect>
#include <QSize>

#include "imaging/Pixels.h"

namespace kadrona::imaging {

/// Average of each channel over a whole picture, rounded to the nearest integer, 0 ... 255.
struct AverageColour {
    int red = 0;
    int green = 0;
    int blue = 0;
};

AverageColour AverageOf(const Pixels& pixels);

/// The part of a picture inside `rectangle`, exactly of the rectangle's size; what lies outside the
/// picture is white. Where the rectangle lies inside, the pixels are shared, not copied.
Pixels Cropped(const Pixels& pixels, const QRect& rectangle);

/// The picture in the middle of a larger canvas of `size`, the new area filled opaquely with
/// `background`. Where a difference is odd, the extra pixel is at the right or the bottom.
/// A canvas smaller than the picture leaves that direction as it is.
Pixels CanvasEnlarged(const Pixels& pixels, QSize size, const QColor& background = Qt::white);

enum class QuarterTurn { CounterClockwise, Clockwise };

/// Turned by 90 degrees without any loss; a grid of tiles stays one.
Pixels Turned(const Pixels& pixels, QuarterTurn turn);

/// The picture repeated, the copies touching each other.
Pixels Repeated(const Pixels& pixels, int columns, int rows);

/// Automatic white balance: the channels scaled so that the picture's middle tones are neutral on
/// average.
Pixels WhiteBalanced(const Pixels& pixels);

}  // namespace kadrona::imaging
