#pragma once

#include <QPlainTextEdit>
#include <QStringList>

class QCompleter;

namespace kadrona::dialogs {

/// A text with a tag on each line, which offers tags that were used before once a line's first two
/// letters are typed: the arrows and Return or Tab take one, Escape or going on typing none.
class TagMemo : public QPlainTextEdit {
    Q_OBJECT

 public:
    explicit TagMemo(QWidget* parent = nullptr);

    void SetSuggestions(const QStringList& tags);
    /// The list that is offered; hidden while there is nothing to offer.
    QCompleter& Completer() { return *completer_; }

 protected:
    void keyPressEvent(QKeyEvent* event) override;

 private:
    void Offer();
    void Take(const QString& tag);

    QCompleter* completer_;
};

}  // namespace kadrona::dialogs
