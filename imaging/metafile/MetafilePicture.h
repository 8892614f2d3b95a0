#pragma once

#include <QRectF>
#include <QSizeF>

namespace kadrona::imaging {

/// What a metafile's header says about the picture as a whole.
struct MetafilePicture {
    /// The picture, in pixels of the device that it was recorded on.
    QRectF frame;
    QSizeF dotsPerMillimetre;
    /// WMF: the logical units that the frame shows; of negative size where mirrored.
    QRectF window;
    /// 0 where unknown.
    double widthInInches = 0;
};

}  // namespace kadrona::imaging
