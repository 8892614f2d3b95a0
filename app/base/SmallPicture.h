#pragma once

#include <QImage>
#include <cmath>

#include "controls/fields/PhotoStrip.h"
#include "imaging/pixels/Resampling.h"

namespace kadrona::app {

/// The photo as large as a strip of photos shows it, on a screen of so many pixels to each of the
/// program's.
inline QImage SmallPicture(const imaging::Pixels& photo, double pixelRatio) {
    const int side = static_cast<int>(std::lround(controls::PhotoStrip::PictureSide * pixelRatio));
    const QSize size = photo.Size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
    QImage picture = imaging::Resampled(photo, size).ToImage();
    picture.setDevicePixelRatio(pixelRatio);
    return picture;
}

}  // namespace kadrona::app
