#pragma once

#include <QSizeF>
#include <QString>

namespace kadrona::core {

/// The size of the finished photo of a template, in millimetres: its canvas, whose units are tenths
/// of them. Empty where the file cannot be read as a template.
QSizeF TemplateSize(const QString& path);

}  // namespace kadrona::core
