#pragma once

#include <QImage>
#include <QSize>

#include "imaging/pixels/AxisTaps.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// The picture scaled to `size`, its shape not kept, with the bicubic filter; where it shrinks,
/// what is finer than a pixel of the result is averaged, not dropped. A grid becomes one picture.
/// The same size gives the same pixels, shared; an empty size an empty picture. Throws
/// platform::Error where memory is short.
///
/// OpenCV was weighed: its bicubic filter does not average where it shrinks, its area filter is no
/// bicubic one, and a grid would have to be unrolled first.
Pixels Resampled(const Pixels& pixels, QSize size);

/// Draws `source` over the pixels of `destination` from `at` on, as many as `columns` and `rows`
/// have; weights are rounded to 1/256. Both images have 32 bits a pixel, opaque or premultiplied.
/// The filter is not Cubic.
///
/// OpenCV was weighed: it scales whole pictures alone, no part of one on the whole one's grid of
/// pixels, so that what is drawn part by part would show seams.
void DrawResampled(const QImage& source, const AxisTaps& columns, const AxisTaps& rows,
                   QImage& destination, QPoint at);

}  // namespace kadrona::imaging
