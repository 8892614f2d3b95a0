#pragma once

#include <QMenu>

namespace kadrona::controls {

/// The letter by which an entry is reached, in upper case: the one after "&", else the caption's
/// first.
QChar CaptionLetter(const QString& caption);

/// A menu whose entries are all reached by a letter, also those without a mnemonic: the only one
/// with that letter is triggered, among several the next one is made current.
class LetterMenu : public QMenu {
    Q_OBJECT

 public:
    using QMenu::QMenu;

 protected:
    void keyPressEvent(QKeyEvent* event) override;

 private:
    QList<QAction*> EntriesWith(QChar letter) const;
};

}  // namespace kadrona::controls
