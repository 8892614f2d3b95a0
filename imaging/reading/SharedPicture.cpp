#include "imaging/reading/SharedPicture.h"

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

QImage SharedPicture(std::unique_ptr<platform::SharedMemory::View> memory, QSize size,
                     QImage::Format format) {
    using View = platform::SharedMemory::View;
    const qsizetype rowBytes = SharedPictureBytes({size.width(), 1});
    QImage image(
        memory->Bytes(), size.width(), size.height(), rowBytes, format,
        [](void* kept) { delete static_cast<View*>(kept); }, memory.get());
    if (!image.isNull()) {
        (void)memory.release();
    }
    return RequireAllocated(std::move(image));
}

}  // namespace kadrona::imaging
