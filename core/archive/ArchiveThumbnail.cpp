#include "core/archive/ArchiveThumbnail.h"

#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"

namespace kadrona::core {

QByteArray ArchiveThumbnail(const imaging::Pixels& photo) {
    constexpr int Height = 180;
    const qint64 width = (qint64{photo.Width()} * Height + photo.Height() / 2) / photo.Height();
    const QSize size(static_cast<int>(qMax(width, qint64{1})), Height);
    return imaging::EncodeJpeg(imaging::Resampled(photo, size));
}

}  // namespace kadrona::core
