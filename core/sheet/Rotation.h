#pragma once

#include <QSize>

#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

class UserInterface;

/// Size of the preview that the user levels a photo with: the long side 300 pixels, the other one
/// in proportion and truncated, but never 0.
QSize RotationPreviewSize(QSize photo);

/// Lets the user level the photo and turns it once, from its own pixels, by that angle; what it
/// uncovers is white. Cancelled, the photo stays as it is.
void LevelPhoto(imaging::LayeredImage& image, UserInterface& ui);

}  // namespace kadrona::core
