#include "imaging/pixels/NewImage.h"

#include "platform/Error.h"
#include "platform/LargePages.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

void ThrowOutOfMemory() {
    throw platform::Error(u"Für dieses Bild reicht der Arbeitsspeicher nicht aus."_s);
}

QImage RequireAllocated(QImage image) {
    if (image.isNull()) {
        ThrowOutOfMemory();
    }
    return image;
}

QImage NewImage(QSize size, QImage::Format format) {
    QImage image = RequireAllocated(QImage(size, format));
    platform::PreferLargePages(image.bits(), static_cast<size_t>(image.sizeInBytes()));
    return image;
}

}  // namespace kadrona::imaging
