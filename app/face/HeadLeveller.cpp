#include "app/face/HeadLeveller.h"

#include <cmath>
#include <utility>

#include "app/adjustments/RotateActions.h"
#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/face/FaceLine.h"
#include "app/face/FaceOverlay.h"
#include "app/face/PhotoFace.h"
#include "app/face/PlaceProposal.h"
#include "controls/messages/ActionGuard.h"
#include "core/templates/LayerPosition.h"
#include "imaging/document/TurnSeries.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString LineHint = u"Ziehen Sie eine Linie von Pupille zu Pupille. Esc bricht ab."_s;

}  // namespace

HeadLeveller::HeadLeveller(PhotoSession& session, PhotoFace& face, imaging::view::ImageView& view,
                           FaceOverlay& overlay, PlaceProposal& proposal, MainActions& actions,
                           RotateActions& rotateActions)
    : session_(session),
      face_(face),
      view_(view),
      overlay_(overlay),
      proposal_(proposal),
      actions_(actions),
      rotateActions_(rotateActions) {
    actions.Connect(Action::LevelHead, this, [this] { acLevelHeadExecute(); });
    actions.Connect(Action::LevelByLine, this, [this] { acLevelByLineExecute(); });
    connect(actions[Action::LevelByLine], &QAction::toggled, this, &HeadLeveller::FollowAction);
    connect(&face, &PhotoFace::Forgotten, this, &HeadLeveller::EndMode);
}

HeadLeveller::~HeadLeveller() {
    EndMode();
}

/// Where no face is found the user shows where the eyes are.
void HeadLeveller::acLevelHeadExecute() {
    if (!session_.IsEditing()) {
        return;
    }
    if (actions_.IsChecked(Action::Beauty)) {
        Q_EMIT actions_.Succeeded(EndStampFirst);
        return;
    }
    if (face_.Find()) {
        Level(face_.Search().face->tiltDegrees);
        return;
    }
    actions_[Action::LevelByLine]->setChecked(true);
    acLevelByLineExecute();
    if (actions_.IsChecked(Action::LevelByLine)) {
        overlay_.ShowHint(u"Kein Gesicht gefunden. "_s + LineHint);
    }
}

/// Triggering has toggled the action already; that is taken back in another mode.
void HeadLeveller::acLevelByLineExecute() {
    if (!session_.IsEditing() || actions_.IsChecked(Action::Beauty) ||
        actions_.IsChecked(Action::SetWhitePoint)) {
        EndMode();
    }
}

/// Whatever unchecks the action ends the mode.
void HeadLeveller::FollowAction(bool checked) {
    line_.reset();
    overlay_.ShowLine(line_);
    overlay_.ShowHint(checked ? LineHint : QString());
    if (checked) {
        view_.SetTool(this);
        view_.setFocus();
    } else if (view_.Tool() == this) {
        view_.SetTool(nullptr);
    }
}

void HeadLeveller::EndMode() {
    actions_[Action::LevelByLine]->setChecked(false);
}

/// The template's middle turns with the photo; one that stood on the face stands there again.
void HeadLeveller::Level(double tiltDegrees) {
    constexpr double WorthTurning = 0.1;
    if (std::abs(tiltDegrees) < WorthTurning) {
        Q_EMIT actions_.Succeeded(u"Der Kopf ist gerade."_s);
        return;
    }
    imaging::LayeredImage& image = session_.Image();
    const bool stoodOnFace = proposal_.StandsOnFace();
    const QRect place = session_.TemplateRectangle();
    const QSize before = image.Photo().Size();
    rotateActions_.LevelPhoto(tiltDegrees);
    if (session_.HasTemplate()) {
        const QSize after = image.Photo().Size();
        const QTransform turn = imaging::TurnAroundMiddle(before, after, tiltDegrees);
        QRect turned = place;
        turned.moveCenter(turn.map(QRectF(place).center()).toPoint());
        image.SetLayerRectangle(1, core::KeptInsidePhoto(turned, after));
    }
    if (stoodOnFace) {
        proposal_.Realign();
    }
}

void HeadLeveller::Press(const imaging::view::ToolPointer& pointer) {
    line_ = QLineF(pointer.photo, pointer.photo);
}

void HeadLeveller::Move(const imaging::view::ToolPointer& pointer) {
    if (line_) {
        line_->setP2(pointer.photo);
        overlay_.ShowLine(line_);
    }
}

/// A click is no line, and a steep one no pair of eyes: the mode stays on for another one.
void HeadLeveller::Release() {
    constexpr double ShortestOnScreen = 12;
    constexpr double Steepest = 45;  // degrees; quarter turns have buttons of their own
    const std::optional<QLineF> line = std::exchange(line_, std::nullopt);
    overlay_.ShowLine(line_);
    if (!line || QLineF(view_.ToWidget(line->p1()), view_.ToWidget(line->p2())).length() <
                     ShortestOnScreen) {
        return;
    }
    const bool leftToRight = line->x1() < line->x2();
    const double tilt = leftToRight ? imaging::TiltDegrees(line->p1(), line->p2())
                                    : imaging::TiltDegrees(line->p2(), line->p1());
    if (std::abs(tilt) > Steepest) {
        overlay_.ShowHint(u"Diese Linie ist zu steil für ein Paar Augen. "_s + LineHint);
        return;
    }
    EndMode();
    controls::Guarded(view_.window(), [&] { Level(tilt); });
}

bool HeadLeveller::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    EndMode();
    return true;
}

}  // namespace kadrona::app
