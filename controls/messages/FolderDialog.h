#pragma once

#include <QString>

class QWidget;

namespace kadrona::controls {

/// Lets the user choose a folder, at first `start`, which may be empty; empty when cancelled.
/// Object name: "FolderDialog".
QString AskForFolder(QWidget* parent, const QString& title, const QString& start);

}  // namespace kadrona::controls
