#pragma once

#include <QString>

class QDialog;
class QPushButton;

namespace kadrona::dialogs {

/// A button with its control name and what is read on it. Its layout gives it to a window.
QPushButton* NamedButton(const QString& name, const QString& caption);

/// The same; Return in a field does not press it.
QPushButton* ClickedButton(const QString& name, const QString& caption);

/// The two buttons that end a dialog.
struct AnswerButtons {
    QPushButton* accept = nullptr;  ///< "btnOk", the default button
    QPushButton* reject = nullptr;  ///< "btnCancel"
};

/// Makes them; the layout that they are put into gives them to the dialog.
AnswerButtons MakeAnswerButtons(QDialog& dialog, const QString& accept, const QString& reject);

}  // namespace kadrona::dialogs
