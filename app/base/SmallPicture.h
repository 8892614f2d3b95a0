#pragma once

#include <QImage>

#include "controls/fields/PhotoStrip.h"
#include "imaging/pixels/Resampling.h"

namespace kadrona::app {

/// The photo as large as a strip of photos shows it.
inline QImage SmallPicture(const imaging::Pixels& photo) {
    constexpr int Side = controls::PhotoStrip::PictureSide;
    const QSize size = photo.Size().scaled(Side, Side, Qt::KeepAspectRatio).expandedTo({1, 1});
    return imaging::Resampled(photo, size).ToImage();
}

}  // namespace kadrona::app
