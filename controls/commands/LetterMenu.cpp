#include "controls/commands/LetterMenu.h"

#include <QKeyEvent>
#include <QStyleOptionMenuItem>

namespace kadrona::controls {

namespace {

constexpr const char* LetterProperty = "menuLetter";

}  // namespace

QChar CaptionLetter(const QString& caption) {
    const QKeySequence keys = QKeySequence::mnemonic(caption);
    if (!keys.isEmpty()) {
        return QChar(keys[0].key()).toUpper();
    }
    return caption.isEmpty() ? QChar() : caption.front().toUpper();
}

void SetMenuLetter(QAction& action, QChar letter) {
    action.setProperty(LetterProperty, letter.toUpper());
}

QChar MenuLetter(const QAction& action) {
    const QChar own = action.property(LetterProperty).toChar();
    return own.isNull() ? CaptionLetter(action.text()) : own;
}

void LetterMenu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
    QMenu::initStyleOption(option, action);
    const QChar own = action->property(LetterProperty).toChar();
    const qsizetype place = own.isNull() ? -1 : option->text.indexOf(own, 0, Qt::CaseInsensitive);
    if (place >= 0) {
        option->text.insert(place, u'&');
    }
}

QList<QAction*> LetterMenu::EntriesWith(QChar letter) const {
    QList<QAction*> entries;
    const QList<QAction*> all = actions();
    for (QAction* entry : all) {
        if (entry->isVisible() && entry->isEnabled() && !entry->isSeparator() &&
            MenuLetter(*entry) == letter) {
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
