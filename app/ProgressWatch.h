#pragma once

#include <QObject>

namespace kadrona::app {

/// Shows the progress that any dialog shows in the taskbar too. Install it as an event filter of
/// the application.
class ProgressWatch : public QObject {
    Q_OBJECT

 public:
    using QObject::QObject;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kadrona::app
