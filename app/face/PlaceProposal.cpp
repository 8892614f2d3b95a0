#include "app/face/PlaceProposal.h"

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/face/FaceOverlay.h"
#include "app/face/PhotoFace.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/check/TemplateTable.h"
#include "core/settings/Settings.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

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
    connect(&session, &PhotoSession::Changed, this, &PlaceProposal::FollowSession);
    connect(&overlay, &FaceOverlay::Accepted, actions[Action::AlignToFace], &QAction::trigger);
    connect(&overlay, &FaceOverlay::Refused, this, &PlaceProposal::End);
}

/// A new photo with its template is offered a place.
bool PlaceProposal::IsWanted() const {
    return !offered_ && session_.IsEditing() && session_.HasTemplate() &&
           settings_.AlignToFace() != core::FaceAlignment::Never;
}

void PlaceProposal::FollowPhoto() {
    if (session_.Image().IsEmpty()) {
        offered_ = false;
    }
    End();
}

void PlaceProposal::FollowSession() {
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
    offered_ = true;
    const imaging::FaceSearch& search = face_.Search();
    if (!search.face) {
        return;
    }
    if (settings_.AlignToFace() == core::FaceAlignment::Always) {
        Take();
        return;
    }
    const core::FacePlacement placement = Place();
    QString text = search.faceCount > 1
                       ? u"%1 Gesichter; Schablone am größten ausrichten?"_s.arg(search.faceCount)
                       : u"Gesicht gefunden. Schablone daran ausrichten?"_s;
    if (placement.photoTooTight) {
        text += u" Das Foto endet zu nah am Kopf."_s;
    }
    overlay_.Propose(placement.rectangle, text);
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

void PlaceProposal::Take() {
    End();
    session_.Image().SetLayerRectangle(1, Place().rectangle);
    session_.Image().SetCurrentLayer(1);
}

void PlaceProposal::acAlignToFaceExecute() {
    if (!session_.IsEditing() || !session_.HasTemplate() || actions_.IsChecked(Action::Beauty)) {
        return;
    }
    if (!face_.Find()) {
        ui_.ShowMessage(u"Auf diesem Foto wurde kein Gesicht gefunden."_s);
        return;
    }
    Take();
}

}  // namespace kadrona::app
