#include "imaging/face/Face.h"

#include <QtMath>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "imaging/face/FaceFrame.h"

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

Face WithEyesInOrder(Face face) {
    if (face.leftEye.position.x() > face.rightEye.position.x()) {
        std::swap(face.leftEye, face.rightEye);
    }
    return face;
}

bool HasShapeOfFace(const Face& face) {
    const FaceFrame frame = FaceFrame::OfEyes(face.leftEye.position, face.rightEye.position);
    const auto below = [&frame](const FacePoint& point) {
        return frame.FromPhoto(point.position).y();
    };
    constexpr double Least = 0.1;  // of the pupils' distance
    return frame.unit > 1 && below(face.chin) > Least && below(face.crown) < -Least &&
           below(face.skull) < -Least;
}

bool IsCorrected(const Face& face) {
    constexpr std::array Points{&Face::leftEye, &Face::rightEye, &Face::chin, &Face::crown,
                                &Face::skull};
    return std::ranges::any_of(Points, [&](auto point) { return (face.*point).confidence == 1; });
}

Face Turned(Face face, const QTransform& turn) {
    for (FacePoint* point : {&face.leftEye, &face.rightEye, &face.chin, &face.crown, &face.skull}) {
        point->position = turn.map(point->position);
    }
    face = WithEyesInOrder(face);
    face.tiltDegrees = TiltDegrees(face.leftEye.position, face.rightEye.position);
    return face;
}

QRect CheeksOf(const Face& face) {
    const double unit = face.EyeDistance();
    const QPointF eyes = face.EyeMiddle();
    return QRectF(eyes.x() - 0.55 * unit, eyes.y() + 0.35 * unit, 1.1 * unit, 0.4 * unit).toRect();
}

QPointF EstimatedSkull(const Face& face) {
    constexpr double SkullByChin = 0.98;
    constexpr double SkullByEyes = 1.84;
    const FaceFrame frame = FaceFrame::OfEyes(face.leftEye.position, face.rightEye.position);
    if (frame.unit == 0) {
        return face.crown.position;
    }
    const QPointF crown = frame.FromPhoto(face.crown.position);
    const double chin = frame.FromPhoto(face.chin.position).y();
    const double above = (SkullByChin * chin + SkullByEyes) / 2;
    return frame.ToPhoto({crown.x(), std::max(-above, crown.y())});
}

Face TypicalFace(QSize photo) {
    constexpr double EyeDistance = 0.13;  // of the height, as are those below
    constexpr double EyesToChin = 0.23;
    constexpr double EyesToCrown = 0.26;
    const double height = photo.height();
    const QPointF eyes(photo.width() / 2.0, height / 2);
    const QPointF aside(EyeDistance / 2 * height, 0);
    Face face;
    face.leftEye.position = eyes - aside;
    face.rightEye.position = eyes + aside;
    face.chin.position = eyes + QPointF(0, EyesToChin * height);
    face.crown.position = eyes - QPointF(0, EyesToCrown * height);
    face.skull = face.crown;
    return face;
}

}  // namespace kadrona::imaging
