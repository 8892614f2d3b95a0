#pragma once

#include <QApplication>

namespace kadrona::controls {

/// Shows the hourglass cursor for its lifetime.
class WaitCursor {
 public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace kadrona::controls
