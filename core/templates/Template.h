#pragma once

#include <QSize>
#include <QString>
#include <optional>
#include <vector>

#include "core/templates/LayoutFile.h"
#include "core/templates/TemplateFile.h"
#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

/// A loaded template.
struct Template {
    /// Of its file, without the folder.
    QString name;
    std::vector<TMask> elements;
    /// Size of the finished photo in tenths of a millimetre.
    QSize canvas;
};

/// A template that can be drawn; nothing where there is no such file. Throws platform::FileError, a
/// TemplateFileError for a damaged one, which names the file.
std::optional<Template> ReadTemplate(const QString& path);

/// Draws the template as the only layer over the photo, at the photo's upper left corner.
void ShowTemplate(const Template& shown, imaging::LayeredImage& image);

/// Puts the template layer where it lay on the last photo of this size. Does nothing where there is
/// no layer over the photo.
void RestoreTemplatePlace(const Template& shown, const LayoutFile& layout,
                          imaging::LayeredImage& image);

}  // namespace kadrona::core
