#pragma once

#include <QObject>

namespace kadrona::controls {

/// Keeps the wheel that scrolls a page from changing a value that comes to lie under the pointer:
/// within an area that scrolls, drop-down lists, number fields and sliders take the wheel only
/// with the focus, which they no longer get by it. Install it as an event filter of the
/// application.
class WheelNeedsFocus : public QObject {
    Q_OBJECT

 public:
    using QObject::QObject;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kadrona::controls
