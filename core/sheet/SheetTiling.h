#pragma once

#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

class Settings;

/// From a single photo to the sheet: turns it counter-clockwise where RotateBeforeTileImg is on and
/// repeats it as the layout says. An index beyond the layouts repeats nothing.
void LayOutCopies(imaging::LayeredImage& image, const Settings& settings, int layoutIndex);

}  // namespace kadrona::core
