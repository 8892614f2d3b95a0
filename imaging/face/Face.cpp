#include "imaging/face/Face.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace kadrona::imaging {

double TiltDegrees(QPointF left, QPointF right) {
    const QPointF line = right - left;
    return qRadiansToDegrees(std::atan2(line.y(), line.x()));
}

double Face::EyeDistance() const {
    const QPointF line = rightEye.position - leftEye.position;
    return std::hypot(line.x(), line.y());
}

double Face::Confidence() const {
    return std::min({leftEye.confidence, rightEye.confidence, chin.confidence, crown.confidence});
}

}  // namespace kadrona::imaging
