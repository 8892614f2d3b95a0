#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QWidget;

namespace kadrona::core {
struct OpenDialog;
struct SaveDialog;
}  // namespace kadrona::core

namespace kadrona::app {

/// "Name (*.a;*.b)|*.a;*.b|..." as name filters of the toolkit's file dialog.
QStringList NameFilters(const QString& pipeSeparated);

/// Lets the user choose a picture; nothing when cancelled.
std::optional<QString> ChoosePicture(QWidget* parent, const core::OpenDialog& dialog);

/// Lets the user choose the file to save a picture to; nothing when cancelled. A name without an
/// extension that can be written gets that of the chosen filter. An existing file is chosen only
/// where the user agreed to replace it. `nameFilter` is the filter to start with, the first where
/// it is empty, and becomes the one that the user chose.
std::optional<QString> ChooseSaveFile(QWidget* parent, const core::SaveDialog& dialog,
                                      QString& nameFilter);

/// Lets the user choose a folder that exists; empty when cancelled.
QString ChooseFolder(QWidget* parent, const QString& title);

/// The dialogs no longer start in the folders of their last choices. Throws FileError where the
/// user's values cannot be written.
void ForgetFolders();

}  // namespace kadrona::app
