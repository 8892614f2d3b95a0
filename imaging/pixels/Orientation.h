#pragma once

#include <QImage>

namespace kadrona::imaging {

/// How a stored picture has to be turned to stand upright; the values are those of the EXIF and
/// TIFF tag 0x0112. "Left" is counterclockwise.
enum class Orientation {
    Upright = 1,
    MirroredHorizontally = 2,
    UpsideDown = 3,
    MirroredVertically = 4,
    Transposed = 5,
    NeedsRightTurn = 6,
    Transversed = 7,
    NeedsLeftTurn = 8,
};

/// The orientation of a tag's value; a value that has no meaning is Upright.
Orientation OrientationFrom(int tagValue);

/// Brings a 32-bit image upright: in place where its size stays, else into a second image.
QImage Uprighted(QImage image, Orientation orientation);

}  // namespace kadrona::imaging
