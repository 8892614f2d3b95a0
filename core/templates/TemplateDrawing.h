#pragma once

#include <QImage>
#include <QSize>
#include <vector>

#include "core/templates/TemplateFile.h"

namespace kadrona::core {

/// A template's canvas: the size of element 0. An inverted element counts by its absolute extent.
/// Throws TemplateFileError when there is no element, a side is 0 or longer than 10000 units.
QSize TemplateCanvas(const std::vector<TMask>& elements);

/// Throws TemplateFileError where drawing would take longer than a second or so: more than 10,000
/// elements, or more pixels in all of them than any real template has.
void RequireQuickDrawing(const std::vector<TMask>& elements, int pixelsPerUnit);

/// The template drawn on a canvas of TemplateCanvas times `pixelsPerUnit` (at least 1),
/// Format_ARGB32_Premultiplied; every pure white pixel is fully transparent. Drawn without
/// antialiasing, so that white stays pure. Throws as TemplateCanvas and RequireQuickDrawing do.
QImage DrawTemplate(const std::vector<TMask>& elements, int pixelsPerUnit = 1);

}  // namespace kadrona::core
