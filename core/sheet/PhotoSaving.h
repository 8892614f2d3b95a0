#pragma once

#include <QString>

#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

/// Writes an image's photo as every finished one is written: with its resolution, its IPTC items
/// and the program's name. Throws imaging::WriteError.
void WritePhoto(const imaging::LayeredImage& image, const QString& path);

}  // namespace kadrona::core
