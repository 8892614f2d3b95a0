#pragma once

#include <QPropertyAnimation>

class QScrollBar;
class QWheelEvent;

namespace kadrona::controls {

/// Lets a scroll bar glide to where the notches of a mouse wheel send it instead of jumping there.
/// Further notches on the way move its goal.
class SmoothScroll {
 public:
    /// `bar` outlives this.
    explicit SmoothScroll(QScrollBar& bar);

    /// Takes the wheel's turn. False for an event of a device that scrolls by pixels, which is
    /// smooth as it is.
    bool Turn(const QWheelEvent& event, int pixelsPerNotch);

    /// Stays where it is.
    void Stop() { glide_.stop(); }

 private:
    QScrollBar& bar_;
    QPropertyAnimation glide_;
};

}  // namespace kadrona::controls
