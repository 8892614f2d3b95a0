#pragma once

#include <QObject>

class QDialog;

namespace kadrona::dialogs {

/// Keeps every dialog of the program, whoever made it, wholly on its screen, and over the middle of
/// its parent's window where it has no place of its own: before a dialog is shown that needs more
/// room than there is, its contents go into an area that scrolls. A last row of buttons stays in
/// sight below it. A message gets a wider box instead. Install it as an event filter of the
/// application.
class SmallScreens : public QObject {
    Q_OBJECT

 public:
    using QObject::QObject;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kadrona::dialogs
