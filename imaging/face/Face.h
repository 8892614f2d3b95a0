#pragma once

#include <QPointF>
#include <QRect>
#include <QSize>
#include <QTransform>
#include <optional>

namespace kadrona::imaging {

/// A point of a face, in pixels of the photo; it may lie outside the photo where the head is cut.
struct FacePoint {
    QPointF position;
    /// 0 guessed from the proportions of a face ... 1 certain.
    double confidence = 0;
};

/// What is known of one face. Left and right are as seen in the picture.
struct Face {
    FacePoint leftEye;   ///< pupil
    FacePoint rightEye;  ///< pupil
    FacePoint chin;      ///< lowest point of the jaw
    FacePoint crown;     ///< top of the head, hair included
    FacePoint skull;     ///< top of the head without the hair's volume, estimated
    /// How far the line through the pupils falls to the right, degrees; the photo stands upright
    /// when it is turned counter-clockwise by it.
    double tiltDegrees = 0;

    QPointF EyeMiddle() const { return (leftEye.position + rightEye.position) / 2; }
    /// Distance of the pupils.
    double EyeDistance() const;
    /// Of the least certain of pupils, chin and crown.
    double Confidence() const;
};

/// Cheeks and nose of a face, in pixels of the photo: nearly all of it is skin.
QRect CheeksOf(const Face& face);

/// The top of the skull, photo pixels, by the pupils and the chin; not above the crown. Between the
/// proportions of the face and of the eyes' distance, for either alone goes wrong with long chins
/// or close eyes. The crown where the pupils lie on each other.
QPointF EstimatedSkull(const Face& face);

/// A face of usual proportions in the middle of a photo, large enough to tell its points apart;
/// none is certain.
Face TypicalFace(QSize photo);

/// The left pupil is the one that lies left in the picture.
Face WithEyesInOrder(Face face);

/// Whether pupils, chin and top lie to each other as in a face: the chin below the pupils' line,
/// hair and skull above it.
bool HasShapeOfFace(const Face& face);

/// Whether somebody has put a point of it to its place: such a point is certain, a found one never.
bool IsCorrected(const Face& face);

/// With all points, in photo pixels, and the tilt after a turn of the photo.
Face Turned(Face face, const QTransform& turn);

/// The answer of a search.
struct FaceSearch {
    /// The largest face near the middle; nothing where no face was found.
    std::optional<Face> face;
    /// How many faces were seen.
    int faceCount = 0;
};

/// The tilt of the line through two points of a photo, as in Face.
double TiltDegrees(QPointF left, QPointF right);

}  // namespace kadrona::imaging
