#pragma once

#include <QDialog>
#include <QPixmap>
#include <QStringList>
#include <functional>

#include "controls/messages/ModalResult.h"

class QLabel;

namespace kadrona::dialogs {

class TagMemo;

/// "Schlüsselworte": the free text that an archived photo is found by, a line for each keyword.
class TfmImageTagEdit : public QDialog {
    Q_OBJECT

 public:
    explicit TfmImageTagEdit(QWidget* parent = nullptr);

    /// Shows the dialog modally with that text; returns Ok or Cancel.
    controls::ModalResult ShowEx(const QString& tags = {});

    /// Whose photo the tags are for: shown beside them the next time, once.
    void SetPicture(const QPixmap& picture) { picture_ = picture; }
    /// Who is asked each time for the tags that are offered while the user types.
    void SetSuggestionSource(std::function<QStringList()> source) { source_ = std::move(source); }

    /// The lines of the memo; a line break at its very end begins no further line.
    QStringList Lines() const;
    /// The lines with CR LF after each, the form in which tags are stored.
    QString Tags() const;
    /// Empty where there is no line.
    QString FirstLine() const { return Lines().value(0); }

 private:
    TagMemo* tagMemo_;
    QLabel* photo_;
    QPixmap picture_;
    std::function<QStringList()> source_;
};

}  // namespace kadrona::dialogs
