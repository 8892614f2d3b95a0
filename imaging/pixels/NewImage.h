#pragma once

#include <QImage>
#include <QSize>

namespace kadrona::imaging {

/// Throws the platform::Error that says that a picture does not fit into memory.
[[noreturn]] void ThrowOutOfMemory();

/// `image` as it is. Qt returns a null image where memory is short: that throws a platform::Error.
QImage RequireAllocated(QImage image);

/// An image with undefined content. Throws platform::Error where memory is short.
QImage NewImage(QSize size, QImage::Format format);

}  // namespace kadrona::imaging
