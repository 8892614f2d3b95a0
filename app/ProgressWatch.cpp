#include "app/ProgressWatch.h"

#include <QEvent>
#include <QGuiApplication>
#include <QProgressBar>
#include <algorithm>

#include "platform/TaskbarProgress.h"

namespace kadrona::app {

namespace {

void ShowShareOf(const QProgressBar& bar) {
    const int steps = bar.maximum() - bar.minimum();
    if (steps > 0) {  // else it is only known that there is work
        const int done = std::max(bar.value() - bar.minimum(), 0);  // before the first step -1
        platform::ShowTaskbarProgress(QGuiApplication::desktopFileName(),
                                      static_cast<double>(done) / static_cast<double>(steps));
    }
}

}  // namespace

bool ProgressWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
        if (auto* bar = qobject_cast<QProgressBar*>(watched)) {
            if (event->type() == QEvent::Show) {
                connect(bar, &QProgressBar::valueChanged, this, [bar] { ShowShareOf(*bar); });
                ShowShareOf(*bar);
            } else {
                disconnect(bar, &QProgressBar::valueChanged, this, nullptr);
                platform::ShowTaskbarProgress(QGuiApplication::desktopFileName(), std::nullopt);
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::app
