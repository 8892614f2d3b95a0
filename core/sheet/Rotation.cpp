#include "core/sheet/Rotation.h"

#include <algorithm>

#include "core/base/UserInterface.h"
#include "imaging/pixels/Resampling.h"

namespace kadrona::core {

namespace {

constexpr qint64 LongSide = 300;

}  // namespace

QSize RotationPreviewSize(QSize photo) {
    const auto shortSide = [](qint64 part, qint64 whole) {
        return static_cast<int>(std::max<qint64>(part * LongSide / whole, 1));
    };
    if (photo.width() <= photo.height()) {
        return {shortSide(photo.width(), photo.height()), static_cast<int>(LongSide)};
    }
    return {static_cast<int>(LongSide), shortSide(photo.height(), photo.width())};
}

void LevelPhoto(imaging::LayeredImage& image, UserInterface& ui) {
    if (image.IsEmpty()) {
        return;
    }
    const imaging::Pixels preview =
        imaging::Resampled(image.Photo(), RotationPreviewSize(image.Photo().Size()));
    if (const auto degrees = ui.AskForRotation(preview)) {
        image.TurnPhoto(*degrees);
    }
}

}  // namespace kadrona::core
