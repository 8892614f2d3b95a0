#include "imaging/document/TurnSeries.h"

#include <algorithm>
#include <cmath>

#include "imaging/pixels/FreeRotation.h"

namespace kadrona::imaging {

Pixels TurnSeries::Turned(const Pixels& photo, double degreesCounterClockwise) {
    const qint64 key = photo.Key();
    auto known = std::ranges::find(results_, key, &std::pair<qint64, double>::first);
    if (known == results_.end()) {
        first_ = photo;
        results_ = {{key, 0.0}};
        known = results_.begin();
    }
    const double degrees = std::remainder(known->second + degreesCounterClockwise, 360.0);
    Pixels turned = Rotated(first_, degrees);
    results_.emplace_back(turned.Key(), degrees);
    return turned;
}

void TurnSeries::Forget() {
    first_ = Pixels();
    results_.clear();
}

QTransform TurnAroundMiddle(QSize before, QSize after, double degreesCounterClockwise) {
    return QTransform::fromTranslate(-before.width() / 2.0, -before.height() / 2.0) *
           QTransform().rotate(-degreesCounterClockwise) *
           QTransform::fromTranslate(after.width() / 2.0, after.height() / 2.0);
}

}  // namespace kadrona::imaging
