#pragma once

#include <QSize>

namespace kadrona::core {

/// Size of the preview that the user levels a photo with: the long side 300 pixels, the other one
/// in proportion and truncated, but never 0.
QSize RotationPreviewSize(QSize photo);

}  // namespace kadrona::core
