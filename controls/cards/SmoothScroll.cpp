#include "controls/cards/SmoothScroll.h"

#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

namespace kadrona::controls {
namespace {

constexpr int GlideMilliseconds = 160;

}  // namespace

SmoothScroll::SmoothScroll(QScrollBar& bar) : bar_(bar), glide_(&bar, "value") {
    glide_.setDuration(GlideMilliseconds);
    glide_.setEasingCurve(QEasingCurve::OutCubic);
    QObject::connect(&bar, &QScrollBar::sliderPressed, &glide_, &QPropertyAnimation::stop);
}

bool SmoothScroll::Turn(const QWheelEvent& event, int pixelsPerNotch) {
    if (!event.pixelDelta().isNull() || event.angleDelta().y() == 0) {
        return false;
    }
    const int distance =
        -event.angleDelta().y() * pixelsPerNotch / QWheelEvent::DefaultDeltasPerStep;
    const bool gliding = glide_.state() == QAbstractAnimation::Running;
    const int from = gliding ? glide_.endValue().toInt() : bar_.value();
    const int goal = std::clamp(from + distance, bar_.minimum(), bar_.maximum());
    glide_.stop();
    glide_.setStartValue(bar_.value());
    glide_.setEndValue(goal);
    glide_.start();
    return true;
}

}  // namespace kadrona::controls
