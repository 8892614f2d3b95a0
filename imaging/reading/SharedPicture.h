#pragma once

#include <QImage>
#include <QSize>
#include <memory>

#include "platform/SharedMemory.h"

namespace kadrona::imaging {

/// What the pixels of a picture of 32 bits a pixel take.
inline qint64 SharedPictureBytes(QSize size) {
    constexpr qint64 BytesAPixel = 4;
    return BytesAPixel * size.width() * size.height();
}

/// The first bytes of `memory` as an image, which keeps it as long as it lives. `format` is one of
/// 32 bits a pixel, `memory` has SharedPictureBytes() or more.
QImage SharedPicture(std::unique_ptr<platform::SharedMemory::View> memory, QSize size,
                     QImage::Format format);

}  // namespace kadrona::imaging
