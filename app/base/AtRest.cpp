#include "app/base/AtRest.h"

#include <QApplication>
#include <QThread>

namespace kadrona::app {

bool IsAtRest() {
    // One loop is the program's own; the others belong to who waits, as its own pointer tells.
    return QApplication::overrideCursor() == nullptr &&
           QApplication::activeModalWidget() == nullptr &&
           QApplication::activePopupWidget() == nullptr &&
           QThread::currentThread()->loopLevel() <= 1;
}

}  // namespace kadrona::app
