#pragma once

#include <QByteArray>

#include "imaging/pixels/Pixels.h"

namespace kadrona::core {

/// A photo's thumbnail as "ImgThumb" keeps it: a JPEG 180 pixels high, its width in proportion.
QByteArray ArchiveThumbnail(const imaging::Pixels& photo);

}  // namespace kadrona::core
