#include "imaging/NewImage.h"

#include "platform/Error.h"

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
    return RequireAllocated(QImage(size, format));
}

}  // namespace kadrona::imaging
