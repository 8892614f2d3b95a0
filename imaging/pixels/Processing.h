#pragma once

#include <QColor>
#include <QRect>
#include <QSize>

#include "imaging/pixels/Pixels.h"

/// What makes a new picture throws platform::Error where memory for it is short.
namespace kadrona::imaging {

/// Average of each channel over a whole picture, rounded to the nearest integer, 0 ... 255; what is
/// transparent counts as black. All zero for an empty picture.
struct AverageColour {
    int red = 0;
    int green = 0;
    int blue = 0;
};

AverageColour AverageOf(const Pixels& pixels);

/// The part of a picture inside `rectangle`, exactly of the rectangle's size; what lies outside the
/// picture is white. Where the rectangle lies inside, the pixels are shared, not copied; of a grid,
/// where it lies inside one tile or covers whole tiles. An empty rectangle gives an empty picture.
Pixels Cropped(const Pixels& pixels, const QRect& rectangle);

/// The picture in the middle of a larger canvas of `size`, the new area filled opaquely with
/// `background`. Where a difference is odd, the extra pixel is at the right or the bottom.
/// A canvas smaller than the picture leaves that direction as it is.
Pixels CanvasEnlarged(const Pixels& pixels, QSize size, const QColor& background = Qt::white);

enum class QuarterTurn { CounterClockwise, Clockwise };

/// Turned by 90 degrees without any loss; a grid of tiles stays one.
Pixels Turned(const Pixels& pixels, QuarterTurn turn);

/// The picture repeated, the copies touching each other. `columns` and `rows` as for Pixels.
Pixels Repeated(const Pixels& pixels, int columns, int rows);

/// The picture scaled to `size`, its shape not kept, with the bicubic filter; where it shrinks,
/// what is finer than a pixel of the result is averaged, not dropped. A grid becomes one picture.
/// The same size gives the same pixels, shared; an empty size an empty picture.
Pixels Resampled(const Pixels& pixels, QSize size);

/// Automatic white balance: red and blue scaled so that the picture's grey middle tones are neutral
/// on average. A neutral picture, and one in which too little can be grey, comes back as it is,
/// sharing its pixels.
///
/// A grey world over all middle tones would turn the background of a portrait blue, for skin fills
/// much of it. So the light is first found in the histogram of the middle tones' logarithmic
/// chromaticities: the one that makes most of them grey, weighted by how likely it is (Finlayson,
/// Hordley and Hubel, "Color by correlation", IEEE Trans. PAMI 23(11), 2001; Barron, "Convolutional
/// color constancy", ICCV 2015). Averaging over the points that are nearly grey in it then settles
/// the gains (Huo, Chang, Wang and Wei, "Robust automatic white balance algorithm using gray color
/// points in images", IEEE Trans. Consumer Electronics 52(2), 2006).
Pixels WhiteBalanced(const Pixels& pixels);

}  // namespace kadrona::imaging
