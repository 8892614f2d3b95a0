#pragma once

#include <QColor>

#include "imaging/Pixels.h"

namespace kadrona::imaging {

/// Size of the smallest upright rectangle around a picture turned by an angle.
QSize RotatedSize(QSize size, double degreesCounterClockwise);

/// The picture turned by an angle, bicubic, in the canvas of RotatedSize, the uncovered corners
/// filled with `background`, edges antialiased. Full turns give the same pixels, shared; quarter
/// turns are lossless. Throws platform::Error where memory is short.
Pixels Rotated(const Pixels& pixels, double degreesCounterClockwise,
               const QColor& background = Qt::white);

}  // namespace kadrona::imaging
