#pragma once

#include <QApplication>
#include <QList>

namespace kadrona::controls {

/// Shows the hourglass cursor for its lifetime.
class WaitCursor {
 public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

/// Takes the hourglass away for its lifetime, in which the user is asked something.
class WaitCursorPause {
 public:
    WaitCursorPause() {
        while (const QCursor* cursor = QApplication::overrideCursor()) {
            cursors_.prepend(*cursor);
            QApplication::restoreOverrideCursor();
        }
    }
    ~WaitCursorPause() {
        for (const QCursor& cursor : cursors_) {
            QApplication::setOverrideCursor(cursor);
        }
    }
    WaitCursorPause(const WaitCursorPause&) = delete;
    WaitCursorPause& operator=(const WaitCursorPause&) = delete;

 private:
    QList<QCursor> cursors_;
};

}  // namespace kadrona::controls
