#include "dialogs/TagMemo.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

TagMemo::TagMemo(QWidget* parent) : QPlainTextEdit(parent), completer_(new QCompleter(this)) {
    constexpr int MostOffered = 8;
    completer_->setModel(new QStringListModel(completer_));
    completer_->setWidget(this);
    completer_->setCaseSensitivity(Qt::CaseInsensitive);
    completer_->setMaxVisibleItems(MostOffered);
    completer_->popup()->setObjectName(u"TagSuggestions"_s);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this, &TagMemo::Take);
}

void TagMemo::SetSuggestions(const QStringList& tags) {
    static_cast<QStringListModel*>(completer_->model())->setStringList(tags);
}

/// While the list is open these keys are its own.
void TagMemo::keyPressEvent(QKeyEvent* event) {
    if (completer_->popup()->isVisible()) {
        switch (event->key()) {
            case Qt::Key_Return:
            case Qt::Key_Enter:
            case Qt::Key_Escape:
            case Qt::Key_Tab:
            case Qt::Key_Backtab:
                event->ignore();
                return;
            default:
                break;
        }
    }
    QPlainTextEdit::keyPressEvent(event);
    if (!event->text().isEmpty()) {
        Offer();
    }
}

void TagMemo::Offer() {
    constexpr int LeastLetters = 2;
    const QTextCursor cursor = textCursor();
    const QString line = cursor.block().text();
    completer_->setCompletionPrefix(line);
    const bool isNew = completer_->completionCount() > 1 || completer_->currentCompletion() != line;
    if (line.size() < LeastLetters || !cursor.atBlockEnd() || completer_->completionCount() == 0 ||
        !isNew) {
        completer_->popup()->hide();
        return;
    }
    QRect place = cursorRect();
    place.setWidth(completer_->popup()->sizeHintForColumn(0) +
                   completer_->popup()->verticalScrollBar()->sizeHint().width());
    completer_->complete(place);
}

void TagMemo::Take(const QString& tag) {
    QTextCursor cursor = textCursor();
    cursor.select(QTextCursor::BlockUnderCursor);
    // What is selected begins with the end of the line before, but for the first.
    const bool first = cursor.block().blockNumber() == 0;
    cursor.insertText(first ? tag : u'\n' + tag);
    setTextCursor(cursor);
}

}  // namespace kadrona::dialogs
