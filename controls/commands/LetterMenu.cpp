#include "controls/commands/LetterMenu.h"

#include <QKeyEvent>

namespace kadrona::controls {

QChar CaptionLetter(const QString& caption) {
    const QKeySequence keys = QKeySequence::mnemonic(caption);
    if (!keys.isEmpty()) {
        return QChar(keys[0].key()).toUpper();
    }
    return caption.isEmpty() ? QChar() : caption.front().toUpper();
}

QList<QAction*> LetterMenu::EntriesWith(QChar letter) const {
    QList<QAction*> entries;
    const QList<QAction*> all = actions();
    for (QAction* entry : all) {
        if (entry->isVisible() && entry->isEnabled() && !entry->isSeparator() &&
            CaptionLetter(entry->text()) == letter) {
            entries.append(entry);
        }
    }
    return entries;
}

void LetterMenu::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text().toUpper();
    const bool isLetter = text.size() == 1 && text.front().isLetterOrNumber();
    const QList<QAction*> entries = isLetter ? EntriesWith(text.front()) : QList<QAction*>();
    if (entries.isEmpty()) {
        QMenu::keyPressEvent(event);
        return;
    }
    setActiveAction(entries.at((entries.indexOf(activeAction()) + 1) % entries.size()));
    if (entries.size() == 1) {
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QMenu::keyPressEvent(&enter);
    }
}

}  // namespace kadrona::controls
