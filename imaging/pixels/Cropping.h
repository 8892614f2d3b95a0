#pragma once

#include <QColor>
#include <QRect>
#include <QSize>

#include "imaging/pixels/Pixels.h"

/// What makes a new picture throws platform::Error where memory for it is short.
namespace kadrona::imaging {

/// The part of a picture inside `rectangle`, exactly of the rectangle's size; what lies outside the
/// picture is white. Where the rectangle lies inside, the pixels are shared, not copied; of a grid,
/// where it lies inside one tile or covers whole tiles. An empty rectangle gives an empty picture.
Pixels Cropped(const Pixels& pixels, const QRect& rectangle);

/// The picture in the middle of a larger canvas of `size`, the new area filled opaquely with
/// `background`. Where a difference is odd, the extra pixel is at the right or the bottom.
/// A canvas smaller than the picture leaves that direction as it is.
Pixels CanvasEnlarged(const Pixels& pixels, QSize size, const QColor& background = Qt::white);

/// The picture repeated, the copies touching each other. `columns` and `rows` as for Pixels.
Pixels Repeated(const Pixels& pixels, int columns, int rows);

}  // namespace kadrona::imaging
