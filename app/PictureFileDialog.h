#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QWidget;

namespace kadrona::core {
struct OpenDialog;
}

namespace kadrona::app {

/// "Name (*.a;*.b)|*.a;*.b|..." as name filters of the toolkit's file dialog.
QStringList NameFilters(const QString& pipeSeparated);

/// Lets the user choose a picture; nothing when cancelled.
std::optional<QString> ChoosePicture(QWidget* parent, const core::OpenDialog& dialog);

}  // namespace kadrona::app
