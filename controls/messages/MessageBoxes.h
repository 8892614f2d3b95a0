#pragma once

#include <QString>
#include <memory>
#include <optional>

class QMessageBox;
class QWidget;

namespace kadrona::controls {

// All boxes are modal, wrap long texts, let the user select the text, and bear the application's
// display name as title. Object name: "MessageBox"; the buttons are "OkButton", "YesButton",
// "NoButton".

/// A message with an OK button.
void ShowInformation(QWidget* parent, const QString& text);

/// What went wrong, with an OK button.
void ShowError(QWidget* parent, const QString& text);

enum class Severity { Question, Warning };

/// True for "Ja". "Nein" is the default; Escape and closing mean "Nein".
bool AskYesNo(QWidget* parent, const QString& text, Severity severity = Severity::Question);

/// A warning that asks whether something that failed is tried again; "Ja" is the default, for
/// giving up is what loses something.
bool AskToRetry(QWidget* parent, const QString& text);

/// A warning that its owner shows and gives buttons.
std::unique_ptr<QMessageBox> MakeWarning(const QString& text);

/// One line of text, possibly empty, at first `text`; nothing when cancelled. Object names:
/// "LineDialog", with "LineEdit", "OkButton" and "CancelButton".
std::optional<QString> AskForLine(QWidget* parent, const QString& title, const QString& prompt,
                                  const QString& text = {});

}  // namespace kadrona::controls
