#include "dialogs/archive/TagMemo.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>
#include <algorithm>
#include <array>

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

/// While one of the list is chosen these keys are its own; Escape always closes it.
void TagMemo::keyPressEvent(QKeyEvent* event) {
    QAbstractItemView& offered = *completer_->popup();
    constexpr std::array Choosing{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Tab, Qt::Key_Backtab};
    const bool chooses = std::ranges::find(Choosing, event->key()) != Choosing.end();
    if (offered.isVisible() && chooses && !offered.currentIndex().isValid()) {
        offered.hide();
    }
    if (offered.isVisible() && (chooses || event->key() == Qt::Key_Escape)) {
        event->ignore();
        return;
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
