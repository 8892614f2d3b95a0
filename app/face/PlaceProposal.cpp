#include "app/face/PlaceProposal.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/face/FaceLine.h"
#include "app/face/FaceOverlay.h"
#include "app/face/PhotoFace.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/check/TemplateTable.h"
#include "core/settings/Settings.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString NoFaceFound = u"Auf diesem Foto wurde kein Gesicht gefunden."_s;

}  // namespace

PlaceProposal::PlaceProposal(PhotoSession& session, PhotoFace& face, FaceOverlay& overlay,
                             const core::TData& data, const core::Settings& settings,
                             core::UserInterface& ui, MainActions& actions)
    : session_(session),
      face_(face),
      overlay_(overlay),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions) {
    actions.Connect(Action::AlignToFace, this, [this] { acAlignToFaceExecute(); });
    connect(&face, &PhotoFace::Forgotten, this, &PlaceProposal::FollowPhoto);
    connect(&face, &PhotoFace::Looked, this, &PlaceProposal::Offer);
    connect(&face, &PhotoFace::PointMoved, this, &PlaceProposal::FollowPoints);
    connect(&session, &PhotoSession::Changed, this, &PlaceProposal::FollowSession);
    connect(&overlay, &FaceOverlay::Accepted, actions[Action::AlignToFace], &QAction::trigger);
    connect(&overlay, &FaceOverlay::Refused, this, &PlaceProposal::End);
}

/// A new photo with its template is offered a place, once: as soon as it shows a face.
bool PlaceProposal::IsWanted() const {
    return !offered_ && session_.IsEditing() && session_.HasTemplate() &&
           settings_.AlignToFace() != core::FaceAlignment::Never;
}

/// A turned photo is offered one anew where nobody has answered yet.
void PlaceProposal::FollowPhoto() {
    if (session_.Image().IsEmpty() || overlay_.IsProposing()) {
        offered_ = false;
    }
    toldNone_ = false;
    End();
    if (IsWanted()) {
        face_.FindSoon();
    }
}

void PlaceProposal::FollowPoints() {
    if (overlay_.IsProposing()) {
        Propose(Place());
    }
}

/// What was said of the template's place holds no longer than it stands there.
void PlaceProposal::FollowSession() {
    overlay_.EndRemark();
    if (IsWanted()) {
        face_.FindSoon();
    }
    if (!session_.IsEditing()) {
        End();
    }
}

void PlaceProposal::Offer() {
    if (!IsWanted()) {
        return;
    }
    if (!face_.Search().face) {
        if (face_.WasLookedFor() && !std::exchange(toldNone_, true)) {
            overlay_.ShowRemark(NoFaceFound);
        }
        return;
    }
    offered_ = true;
    const core::FacePlacement placement = Place();
    if (settings_.AlignToFace() == core::FaceAlignment::Always) {
        Take(placement);
    } else if (StandsAt(placement.rectangle)) {
        Remark(placement);
    } else {
        Propose(placement);
    }
}

void PlaceProposal::Propose(const core::FacePlacement& placement) {
    const QString remark = core::PlacementRemark(face_.Search(), placement);
    overlay_.Propose(placement.rectangle,
                     (remark.isEmpty() ? u"Gesicht gefunden."_s : remark) + u' ' + OfferQuestion);
}

/// As near as nobody would move it by hand.
bool PlaceProposal::StandsAt(const QRect& place) const {
    constexpr int PartOfWidth = 400;
    const int near = std::max(1, place.width() / PartOfWidth);
    const QRect now = session_.TemplateRectangle();
    const auto isNear = [near](int one, int other) { return std::abs(one - other) <= near; };
    return isNear(now.left(), place.left()) && isNear(now.top(), place.top()) &&
           isNear(now.right(), place.right()) && isNear(now.bottom(), place.bottom());
}

void PlaceProposal::End() {
    if (overlay_.IsProposing()) {
        overlay_.Propose(std::nullopt, {});
    }
}

core::FacePlacement PlaceProposal::Place() const {
    return core::PlaceOnFace(*face_.Search().face, data_.LoadedFigures(),
                             data_.TemplateCanvasSize(), session_.Image().Photo().Size());
}

void PlaceProposal::Take(const core::FacePlacement& placement) {
    End();
    session_.Image().SetLayerRectangle(1, placement.rectangle);
    session_.Image().SetCurrentLayer(1);
    Remark(placement);
}

void PlaceProposal::Remark(const core::FacePlacement& placement) {
    const QString remark = core::PlacementRemark(face_.Search(), placement);
    if (!remark.isEmpty()) {
        overlay_.ShowRemark(remark);
    }
}

bool PlaceProposal::StandsOnFace() const {
    return session_.IsEditing() && session_.HasTemplate() && face_.Search().face &&
           StandsAt(Place().rectangle);
}

void PlaceProposal::Realign() {
    if (face_.Find()) {
        Take(Place());
    }
}

void PlaceProposal::acAlignToFaceExecute() {
    if (!session_.IsEditing() || !session_.HasTemplate()) {
        return;
    }
    if (actions_.IsChecked(Action::Beauty)) {
        Q_EMIT actions_.Succeeded(EndStampFirst);
        return;
    }
    if (!face_.Find()) {
        ui_.ShowMessage(NoFaceFound);
        return;
    }
    Take(Place());
}

}  // namespace kadrona::app
