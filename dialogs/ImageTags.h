#pragma once

#include <QDialog>
#include <QStringList>

#include "controls/messages/ModalResult.h"

class QPlainTextEdit;

namespace kadrona::dialogs {

/// "Schlüsselworte": the free text that an archived photo is found by, a line for each keyword.
class TfmImageTagEdit : public QDialog {
    Q_OBJECT

 public:
    explicit TfmImageTagEdit(QWidget* parent = nullptr);

    /// Shows the dialog modally with that text; returns Ok or Cancel.
    controls::ModalResult ShowEx(const QString& tags = {});

    /// The lines of the memo; a line break at its very end begins no further line.
    QStringList Lines() const;
    /// The lines with CR LF after each, the form in which tags are stored.
    QString Tags() const;
    /// Empty where there is no line.
    QString FirstLine() const { return Lines().value(0); }

 private:
    QPlainTextEdit* tagMemo_;
};

}  // namespace kadrona::dialogs
