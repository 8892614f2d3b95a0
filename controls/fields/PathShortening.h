#pragma once

#include <QString>
#include <functional>

namespace kadrona::controls {

/// Width in pixels that a text takes.
using TextMeasure = std::function<int(const QString&)>;

/// The path itself if it fits into `width`, else the longest of these forms that does; the file
/// name stays whole as long as it fits:
///
///     /home/…/kunden/bild.jpg   …/bild.jpg   bild.jpg   bi…pg   (nothing)
///
/// Both separators are understood; the ones kept are the path's own.
QString ShortenPath(const QString& path, int width, const TextMeasure& measure);

}  // namespace kadrona::controls
