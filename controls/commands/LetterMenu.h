#pragma once

#include <QMenu>

namespace kadrona::controls {

/// The letter by which an entry is reached, in upper case: the one after "&", else the caption's
/// first.
QChar CaptionLetter(const QString& caption);

/// Lets a LetterMenu underline that letter of an action's text, the first one in the text, and take
/// it for the entry's own. Whatever else shows the action shows its text without a mnemonic.
void SetMenuLetter(QAction& action, QChar letter);

/// The letter by which a LetterMenu's entry is reached, in upper case: its own, else CaptionLetter.
QChar MenuLetter(const QAction& action);

/// A menu whose entries are all reached by a letter, also those without a mnemonic: the only one
/// with that letter is triggered, among several the next one is made current.
class LetterMenu : public QMenu {
    Q_OBJECT

 public:
    using QMenu::QMenu;

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;

 private:
    QList<QAction*> EntriesWith(QChar letter) const;
};

}  // namespace kadrona::controls
