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

QRect CheeksOf(const Face& face) {
    const double unit = face.EyeDistance();
    const QPointF eyes = face.EyeMiddle();
    return QRectF(eyes.x() - 0.55 * unit, eyes.y() + 0.35 * unit, 1.1 * unit, 0.4 * unit).toRect();
}

}  // namespace kadrona::imaging
