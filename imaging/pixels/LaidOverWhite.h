#pragma once

#include <QImage>

namespace kadrona::imaging {

/// The picture over white, as QImage::Format_RGB32. In place where nothing else shares its 32-bit
/// pixels (ARGB32, premultiplied or not); one of QImage::Format_RGBA64 is rounded to 8 bits a
/// channel; an opaque one comes back as it is. Throws platform::Error where memory is short.
QImage LaidOverWhite(QImage image);

}  // namespace kadrona::imaging
