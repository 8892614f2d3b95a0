#pragma once

#include <QString>

#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

/// Sets object name (2:5) and keywords (2:25, each line break a comma) among an image's IPTC items;
/// writes no file.
void SetIptcTags(imaging::LayeredImage& image, const QString& objectName, const QString& keywords);

/// Replaces the IPTC items of a JPEG file by these two. Does nothing where there is no such file.
/// Throws platform::FileError.
void RewriteIptcTags(const QString& fileName, const QString& objectName, const QString& keywords);

}  // namespace kadrona::core
