#include "app/face/PhotoFace.h"

#include <algorithm>
#include <utility>

#include "app/base/PhotoSession.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "imaging/document/TurnSeries.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"

namespace kadrona::app {

using imaging::LayeredImage;

namespace {

constexpr int SearchDelayMilliseconds = 200;

}  // namespace

PhotoFace::PhotoFace(PhotoSession& session, QWidget& window, Searcher search)
    : session_(session), window_(window), search_(std::move(search)) {
    timer_.setSingleShot(true);
    timer_.setInterval(SearchDelayMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    connect(&session.Image(), &LayeredImage::PhotoEdited, this, [this] { painting_ = true; });
    connect(&session.Image(), &LayeredImage::PhotoTurned, this, &PhotoFace::FollowTurn);
    connect(&session.Image(), &LayeredImage::PhotoChanged, this, [this] { FollowPhoto(); });
}

PhotoFace::Searcher PhotoFace::SearchOfThisMachine() {
    return [](const imaging::Pixels& photo) { return imaging::FindFace(photo); };
}

/// What the user has corrected turns with the photo, and back.
void PhotoFace::FollowTurn(double degreesCounterClockwise) {
    isTurning_ = true;
    if (degreesCounterClockwise == 0) {
        if (!beforeTurns_.empty()) {
            turned_ = beforeTurns_.back();
            beforeTurns_.pop_back();
        }
        return;
    }
    const auto corrected = IsCorrected() ? found_.face : std::nullopt;
    beforeTurns_.push_back(corrected);
    if (corrected) {
        turned_ = imaging::Turned(
            *corrected, imaging::TurnAroundMiddle(photoSize_, session_.Image().Photo().Size(),
                                                  degreesCounterClockwise));
    }
}

/// The stamp, many times a second, and a change of tones leave the face where it is. Where none was
/// found, other tones may show one.
void PhotoFace::FollowPhoto() {
    measured_ = false;
    const LayeredImage& image = session_.Image();
    const int geometry = image.Edits().geometry;
    const bool stays = std::exchange(geometry_, geometry) == geometry;
    const bool isTurning = std::exchange(isTurning_, false);
    const auto turned = std::exchange(turned_, std::nullopt);
    photoSize_ = image.IsEmpty() ? QSize() : image.Photo().Size();
    if (std::exchange(painting_, false) || (stays && found_.face)) {
        return;
    }
    if (!isTurning && !stays) {
        beforeTurns_.clear();
    }
    known_ = false;
    found_ = {};
    measures_ = {};
    Q_EMIT Forgotten();
    if (turned) {
        TakeMarked(*turned);
    }
}

bool PhotoFace::Find() {
    const imaging::Pixels& photo = session_.Image().Photo();
    if (!known_) {
        const controls::WaitCursor wait;
        try {
            found_ = search_(photo);
        } catch (const imaging::CascadesMissing& error) {
            missing_ = error.Text();
            throw;
        }
        missing_.clear();
        known_ = true;
        measured_ = false;
    }
    if (!measured_) {
        measures_ = found_.face ? imaging::MeasurePortrait(photo, *found_.face)
                                : imaging::PortraitMeasures();
        measured_ = true;
    }
    return found_.face.has_value();
}

void PhotoFace::FindSoon() {
    timer_.start();
}

void PhotoFace::Look() {
    controls::Guarded(&window_, [this] {
        if (!session_.IsEditing()) {
            return;
        }
        try {
            Find();
        } catch (const imaging::CascadesMissing&) {
            // Nobody asked for the face; who does searches again, and is told what to install.
        }
        Q_EMIT Looked();
    });
}

void PhotoFace::TakeMarked(const imaging::Face& face) {
    found_ = {face, std::max(1, found_.faceCount)};
    found_.face->tiltDegrees = imaging::TiltDegrees(face.leftEye.position, face.rightEye.position);
    known_ = true;
    measured_ = false;
    Q_EMIT PointMoved();
    FindSoon();
}

imaging::FacePoint imaging::Face::*PhotoFace::MovePoint(imaging::FacePoint imaging::Face::*point,
                                                        QPointF to) {
    using imaging::Face;
    Face face = *found_.face;
    const QPointF by = to - (face.*point).position;
    const QPointF skull = imaging::EstimatedSkull(face);
    const bool isSkullPlaced = face.skull.confidence == 1;
    face.*point = {to, 1};
    imaging::FacePoint Face::*now = point;
    if (face.leftEye.position.x() > face.rightEye.position.x()) {
        face = imaging::WithEyesInOrder(face);
        now = point == &Face::leftEye ? &Face::rightEye : &Face::leftEye;
    }
    if (point != &Face::skull && !isSkullPlaced) {
        face.skull.position += point == &Face::crown ? by : imaging::EstimatedSkull(face) - skull;
    }
    if (!imaging::HasShapeOfFace(face)) {
        return point;
    }
    TakeMarked(face);
    return now;
}

bool PhotoFace::IsCorrected() const {
    return found_.face && imaging::IsCorrected(*found_.face);
}

}  // namespace kadrona::app
