#include "app/face/FacePoints.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/face/FaceOverlay.h"
#include "app/face/PhotoFace.h"
#include "controls/messages/ActionGuard.h"
#include "dialogs/side/CheckSection.h"
#include "imaging/face/Cascades.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::Face;

namespace {

/// From a pixel's number to its middle.
constexpr QPointF PixelMiddle(0.5, 0.5);

}  // namespace

FacePoints::FacePoints(PhotoSession& session, PhotoFace& face, imaging::view::ImageView& view,
                       FaceOverlay& overlay, dialogs::CheckSection& section, MainActions& actions)
    : session_(session),
      face_(face),
      view_(view),
      overlay_(overlay),
      section_(section),
      actions_(actions) {
    const auto leave = [this] { section_.SetPointsMovable(false); };
    connect(&section, &dialogs::CheckSection::PointsToggled, this, &FacePoints::SetMovable);
    connect(&face, &PhotoFace::Forgotten, this, leave);
    connect(&face, &PhotoFace::Looked, this, &FacePoints::ShowPoints);
    connect(&face, &PhotoFace::PointMoved, this, &FacePoints::ShowPoints);
    for (const Action mode : MouseModes) {
        connect(actions[mode], &QAction::toggled, this, [leave](bool checked) {
            if (checked) {
                leave();
            }
        });
    }
}

FacePoints::~FacePoints() {
    End();
}

void FacePoints::ShowCrown(core::Crown crown) {
    top_ = crown == core::Crown::Skull ? &Face::skull : &Face::crown;
    held_ = nullptr;
    ShowPoints();
}

void FacePoints::SetMovable(bool movable) {
    if (movable) {
        controls::Guarded(view_.window(), [this] { Begin(); });
    } else {
        End();
    }
    section_.SetPointsMovable(view_.Tool() == this);
    ShowPoints();
}

void FacePoints::Begin() {
    QString reason = u"Kein Gesicht gefunden."_s;
    try {
        face_.Find();
    } catch (const imaging::CascadesMissing& error) {
        reason = error.Text();  // who points the face out needs none of them
    }
    if (!face_.Search().face) {
        marked_ = imaging::TypicalFace(session_.Image().Photo().Size());
        overlay_.ShowHint(reason + u" Ziehen Sie die Punkte auf Pupillen, Kinn und Scheitel."_s);
    }
    for (const Action mode : MouseModes) {
        if (actions_.IsChecked(mode)) {
            actions_[mode]->trigger();
        }
    }
    view_.SetTool(this);
}

void FacePoints::End() {
    if (std::exchange(marked_, std::nullopt)) {
        overlay_.ShowHint({});
    }
    if (view_.Tool() == this) {
        view_.SetTool(nullptr);
    }
}

std::array<FacePoints::PointOfFace, 4> FacePoints::Points() const {
    return {&Face::leftEye, &Face::rightEye, &Face::chin, top_};
}

/// Null where there is none.
const Face* FacePoints::Shown() const {
    const std::optional<Face>& face = marked_ ? marked_ : face_.Search().face;
    return face ? &*face : nullptr;
}

void FacePoints::ShowPoints() {
    std::vector<imaging::FacePoint> points;
    if (const Face* face = Shown(); face != nullptr && view_.Tool() == this) {
        for (const PointOfFace point : Points()) {
            points.push_back(face->*point);
        }
    }
    overlay_.ShowPoints(std::move(points));
}

/// Takes the point under the pointer.
void FacePoints::Press(const imaging::view::ToolPointer& pointer) {
    constexpr double Reach = 14;
    held_ = nullptr;
    const Face* face = Shown();
    if (face == nullptr) {
        return;
    }
    double nearest = Reach;
    for (const PointOfFace point : Points()) {
        const QPointF place = (face->*point).position;
        const QPointF off = view_.ToWidget(place + PixelMiddle) - pointer.widget;
        const double distance = std::hypot(off.x(), off.y());
        if (distance < nearest) {
            nearest = distance;
            held_ = point;
        }
    }
}

void FacePoints::Move(const imaging::view::ToolPointer& pointer) {
    if (held_ == nullptr || Shown() == nullptr) {
        return;
    }
    const QPointF to = pointer.photo - PixelMiddle;
    if (marked_) {
        marked_.value().*held_ = {to, 1};
        ShowPoints();
    } else {
        held_ = face_.MovePoint(held_, to);
    }
}

/// A click says that the point stands where it belongs. When none is guessed, there is a face.
void FacePoints::Release() {
    const PointOfFace held = std::exchange(held_, nullptr);
    if (!marked_ || held == nullptr) {
        return;
    }
    (marked_.value().*held).confidence = 1;
    ShowPoints();
    if (std::ranges::any_of(Points(), [this](PointOfFace point) {
            return (marked_.value().*point).confidence == 0;
        })) {
        return;
    }
    Face face = imaging::WithEyesInOrder(*marked_);
    if (top_ == &Face::skull) {
        face.crown = face.skull;
    } else {
        face.skull.position = imaging::EstimatedSkull(face);
    }
    if (imaging::HasShapeOfFace(face)) {
        marked_.reset();
        overlay_.ShowHint({});
        face_.TakeMarked(face);
    }
}

bool FacePoints::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    section_.SetPointsMovable(false);
    return true;
}

}  // namespace kadrona::app
