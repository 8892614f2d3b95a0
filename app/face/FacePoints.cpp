#include "app/face/FacePoints.h"

#include <cmath>

#include "app/base/MainActions.h"
#include "app/face/FaceOverlay.h"
#include "app/face/PhotoFace.h"
#include "dialogs/side/CheckSection.h"
#include "imaging/view/ImageView.h"

namespace kadrona::app {

using imaging::Face;

namespace {

/// From a pixel's number to its middle.
constexpr QPointF PixelMiddle(0.5, 0.5);

}  // namespace

FacePoints::FacePoints(PhotoFace& face, imaging::view::ImageView& view, FaceOverlay& overlay,
                       dialogs::CheckSection& section, MainActions& actions)
    : face_(face), view_(view), overlay_(overlay), section_(section) {
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
    SetMovable(false);
}

void FacePoints::SetMovable(bool movable) {
    if (movable && face_.Search().face) {
        view_.SetTool(this);
    } else if (view_.Tool() == this) {
        view_.SetTool(nullptr);
    }
    ShowPoints();
}

void FacePoints::ShowPoints() {
    overlay_.ShowPoints(view_.Tool() == this ? face_.Search().face : std::nullopt);
}

/// Takes the point under the pointer.
void FacePoints::Press(const imaging::view::ToolPointer& pointer) {
    constexpr double Reach = 14;
    held_ = nullptr;
    if (!face_.Search().face) {
        return;
    }
    double nearest = Reach;
    for (const auto point : {&Face::leftEye, &Face::rightEye, &Face::chin, &Face::crown}) {
        const QPointF place = ((*face_.Search().face).*point).position;
        const QPointF off = view_.ToWidget(place + PixelMiddle) - pointer.widget;
        const double distance = std::hypot(off.x(), off.y());
        if (distance < nearest) {
            nearest = distance;
            held_ = point;
        }
    }
}

void FacePoints::Move(const imaging::view::ToolPointer& pointer) {
    if (held_ != nullptr && face_.Search().face) {
        face_.MovePoint(held_, pointer.photo - PixelMiddle);
    }
}

void FacePoints::Release() {
    held_ = nullptr;
}

bool FacePoints::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    section_.SetPointsMovable(false);
    return true;
}

}  // namespace kadrona::app
