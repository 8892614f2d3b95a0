#include "dialogs/base/PageKeys.h"

#include <QShortcut>
#include <QTabWidget>
#include <utility>

namespace kadrona::dialogs {

void TurnPagesByKeys(QTabWidget& pages, QWidget& window) {
    for (const auto& [key, step] :
         {std::pair(Qt::CTRL | Qt::Key_Tab, 1), {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, -1}}) {
        auto* shortcut = new QShortcut(key, &window);
        QObject::connect(shortcut, &QShortcut::activated, &pages, [&pages, step = step] {
            const int count = pages.count();
            pages.setCurrentIndex((pages.currentIndex() + step + count) % count);
        });
    }
}

}  // namespace kadrona::dialogs
