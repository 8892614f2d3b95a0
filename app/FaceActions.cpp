#include "app/FaceActions.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/CheckReport.h"
#include "app/FaceOverlay.h"
#include "app/MainActions.h"
#include "app/PhotoSession.h"
#include "app/ViewActions.h"
#include "app/commandline/CommandSetup.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/check/FacePlacement.h"
#include "core/check/WhiteCorners.h"
#include "dialogs/side/CheckSection.h"
#include "dialogs/side/SidePanel.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"
#include "imaging/pixels/FreeRotation.h"
#include "imaging/view/ImageView.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::LayeredImage;

namespace {

const QString CheckShownValue = u"CheckShown"_s;
const QString NoFaceText = u"Auf diesem Foto wurde kein Gesicht gefunden."_s;
constexpr int SearchDelayMilliseconds = 200;

}  // namespace

FaceActions::FaceActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                         const core::Settings& settings, core::UserInterface& ui,
                         MainActions& actions, ViewActions& viewActions, dialogs::SidePanel& panel,
                         dialogs::CheckSection& section)
    : session_(session),
      view_(view),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions),
      viewActions_(viewActions),
      panel_(panel),
      section_(section),
      overlay_(new FaceOverlay(view)) {
    using dialogs::CheckSection;
    search_.setSingleShot(true);
    connect(&search_, &QTimer::timeout, this, [this] { LookAgain(); });
    actions.Connect(Action::AlignToFace, this, [this] { acAlignToFaceExecute(); });
    actions.Connect(Action::LevelHead, this, [this] { acLevelHeadExecute(); });
    actions.Connect(Action::ShowCheck, this,
                    [this] { ShowCheck(actions_.IsChecked(Action::ShowCheck)); });
    connect(&session.Image(), &LayeredImage::PhotoEdited, this, [this] { retouching_ = true; });
    connect(&session.Image(), &LayeredImage::PhotoChanged, this, [this] { FollowPhoto(); });
    connect(&session, &PhotoSession::Changed, this, [this] { FollowSession(); });
    connect(overlay_, &FaceOverlay::Accepted, actions[Action::AlignToFace], &QAction::trigger);
    connect(overlay_, &FaceOverlay::Refused, this, [this] { EndOffer(); });
    connect(&section, &CheckSection::PointsToggled, this, &FaceActions::SetPointsMovable);
    connect(&section, &CheckSection::ReportAsked, this,
            [this] { controls::Guarded(view_.window(), [this] { SaveReport(); }); });
    section.AddAction(actions[Action::AlignToFace]);
    section.AddAction(actions[Action::LevelHead]);
    controls::Guarded(view.window(), [this] {
        actions_.SetChecked(Action::ShowCheck, platform::ReadRegistryInteger(CheckShownValue) != 0);
        panel_.ShowSection(&section_, actions_.IsChecked(Action::ShowCheck));
    });
    ShowLines();
}

FaceActions::~FaceActions() {
    SetPointsMovable(false);
}

bool FaceActions::IsEditing() const {
    return session_.CurrentStage() == PhotoSession::Stage::PhotoOpen && !session_.Image().IsEmpty();
}

QRect FaceActions::TemplateRectangle() const {
    return session_.HasTemplate() ? session_.Image().LayerAt(1).rectangle : QRect();
}

core::TemplateRow FaceActions::Figures() const {
    return LoadedFigures(data_);
}

/// The stamp changes the photo many times a second: the face is where it was.
void FaceActions::FollowPhoto() {
    const QSize size = session_.Image().Photo().Size();
    if (session_.Image().IsEmpty()) {
        edits_ = {};
        offered_ = false;
    } else if (retouching_) {
        edits_.retouched = true;
    } else if (size == photoSize_ && IsEditing() && session_.Image().CanUndo()) {
        edits_.tone = true;
    }
    if (!session_.Image().CanUndo()) {
        edits_ = {};
    }
    photoSize_ = size;
    if (!std::exchange(retouching_, false)) {
        known_ = false;
        found_ = {};
        measures_ = {};
        section_.SetPointsMovable(false);
        EndOffer();
    }
}

/// A new photo with its template is offered a place; the check follows every change.
void FaceActions::FollowSession() {
    if (figuresOf_ != data_.TemplateName()) {
        figuresOf_ = data_.TemplateName();
        figures_.reset();
        figuresKnown_ = false;
    }
    const bool check = actions_.IsChecked(Action::ShowCheck);
    const bool offer = !offered_ && session_.HasTemplate() &&
                       settings_.AlignToFace() != core::FaceAlignment::Never;
    if (IsEditing() && !known_ && (check || offer)) {
        search_.start(SearchDelayMilliseconds);
    }
    if (!IsEditing()) {
        EndOffer();
    }
    ShowLines();
}

void FaceActions::LookAgain() {
    controls::Guarded(view_.window(), [this] {
        if (!IsEditing()) {
            return;
        }
        try {
            FindFace();
        } catch (const imaging::CascadesMissing&) {
            // Nobody asked for the face; who does is told what to install.
            known_ = true;
        }
        if (!offered_ && session_.HasTemplate()) {
            OfferPlace();
        }
        ShowLines();
    });
}

/// True where there is a face.
bool FaceActions::FindFace() {
    if (!known_) {
        const controls::WaitCursor wait;
        found_ = imaging::FindFace(session_.Image().Photo());
        measures_ = found_.face ? imaging::MeasurePortrait(session_.Image().Photo(), *found_.face)
                                : imaging::PortraitMeasures();
        known_ = true;
    }
    return found_.face.has_value();
}

void FaceActions::OfferPlace() {
    offered_ = true;
    if (!found_.face || settings_.AlignToFace() == core::FaceAlignment::Never) {
        return;
    }
    if (settings_.AlignToFace() == core::FaceAlignment::Always) {
        TakePlace();
        return;
    }
    const core::FacePlacement placement = core::PlaceOnFace(
        *found_.face, Figures(), data_.TemplateCanvasSize(), session_.Image().Photo().Size());
    QString text = found_.faceCount > 1
                       ? u"%1 Gesichter; Schablone am größten ausrichten?"_s.arg(found_.faceCount)
                       : u"Gesicht gefunden. Schablone daran ausrichten?"_s;
    if (placement.photoTooTight) {
        text += u" Das Foto endet zu nah am Kopf."_s;
    }
    overlay_->Propose(placement.rectangle, text);
}

void FaceActions::EndOffer() {
    if (overlay_->IsProposing()) {
        overlay_->Propose(std::nullopt, {});
    }
}

void FaceActions::TakePlace() {
    EndOffer();
    const core::FacePlacement placement = core::PlaceOnFace(
        *found_.face, Figures(), data_.TemplateCanvasSize(), session_.Image().Photo().Size());
    session_.Image().SetLayerRectangle(1, placement.rectangle);
    session_.Image().SetCurrentLayer(1);
}

void FaceActions::acAlignToFaceExecute() {
    if (!IsEditing() || !session_.HasTemplate() || actions_.IsChecked(Action::Beauty)) {
        return;
    }
    if (!FindFace()) {
        ui_.ShowMessage(NoFaceText);
        return;
    }
    TakePlace();
}

void FaceActions::acLevelHeadExecute() {
    constexpr double WorthTurning = 0.1;
    LayeredImage& image = session_.Image();
    if (!IsEditing() || actions_.IsChecked(Action::Beauty)) {
        return;
    }
    if (!FindFace()) {
        ui_.ShowMessage(NoFaceText);
        return;
    }
    const double tilt = found_.face->tiltDegrees;
    if (std::abs(tilt) < WorthTurning) {
        return;
    }
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    {
        const controls::WaitCursor wait;
        image.ChangePhoto(imaging::Rotated(image.Photo(), tilt));
    }
    viewActions_.KeepTemplateOnPhoto();
    if (session_.HasTemplate()) {
        image.SetCurrentLayer(1);
    }
}

void FaceActions::ShowCheck(bool shown) {
    panel_.ShowSection(&section_, shown);
    if (!shown) {
        section_.SetPointsMovable(false);
    }
    platform::WriteRegistryInteger(CheckShownValue, int{shown});
    FollowSession();
}

std::vector<core::CheckLine> FaceActions::Lines() const {
    core::CheckedPhoto checked;
    checked.face = found_.face;
    checked.measures = measures_;
    checked.rectangle = TemplateRectangle();
    checked.figures = figures_;
    checked.printedWidth = {data_.TemplateCanvasSize().width()};
    checked.edits = edits_;
    checked.whiteCorners = core::HasWhiteCorners(session_.Image().Photo(), checked.rectangle);
    return core::CheckPhoto(checked);
}

void FaceActions::LoadFigures() {
    // A table that cannot be read is said once, not at every frame of a drag.
    if (!std::exchange(figuresKnown_, true)) {
        controls::Guarded(view_.window(), [this] { figures_ = Figures(); });
    }
}

void FaceActions::ShowLines() {
    if (!actions_.IsChecked(Action::ShowCheck)) {
        return;
    }
    if (!IsEditing() || !session_.HasTemplate()) {
        section_.SetLines({}, u"Öffnen Sie ein Foto und wählen Sie eine Schablone."_s);
        return;
    }
    LoadFigures();
    QString summary = u"%1. Ohne Gewähr."_s.arg(session_.TemplateName());
    if (found_.faceCount > 1) {
        summary +=
            u" %1 Gesichter; geprüft wird das größte nahe der Mitte."_s.arg(found_.faceCount);
    }
    section_.SetLines(Lines(), summary);
    overlay_->ShowPoints(section_.PointsMovable() ? found_.face : std::nullopt);
}

bool FaceActions::ConfirmCut() {
    if (!settings_.AskBeforeCut() || !IsEditing() || !session_.HasTemplate()) {
        return true;
    }
    try {
        const bool found = FindFace();
        if (!found && !actions_.IsChecked(Action::ShowCheck)) {
            return true;
        }
    } catch (const imaging::CascadesMissing&) {
        return true;
    }
    LoadFigures();
    QStringList missed;
    for (const core::CheckLine& line : Lines()) {
        if (line.state == core::CheckState::Missed) {
            missed << line.label + u' ' + core::FigureText(line) + u'.';
        }
    }
    return missed.isEmpty() ||
           controls::AskYesNo(view_.window(), missed.join(u'\n') + u" Trotzdem erstellen?"_s,
                              controls::Severity::Warning);
}

void FaceActions::SaveReport() {
    core::SaveDialog dialog;
    dialog.title = u"Bericht speichern"_s;
    dialog.filter = u"PDF (*.pdf)|*.pdf"_s;
    dialog.defaultExtension = u"pdf"_s;
    dialog.initialFolder = data_.CurrentFileFolder();
    dialog.fileName = QFileInfo(data_.CurrentFile()).completeBaseName() + u"_pruefung"_s;
    if (const auto path = ui_.AskForSaveFile(dialog)) {
        const controls::WaitCursor wait;
        WriteCheckReport({session_.Image().Photo(), TemplateRectangle(), session_.TemplateName(),
                          found_.face, Lines()},
                         *path);
    }
}

void FaceActions::SetPointsMovable(bool movable) {
    if (movable && found_.face) {
        view_.SetTool(this);
    } else if (view_.Tool() == this) {
        view_.SetTool(nullptr);
    }
    overlay_->ShowPoints(movable ? found_.face : std::nullopt);
}

/// Takes the point under the pointer.
void FaceActions::Press(const imaging::view::ToolPointer& pointer) {
    constexpr double Reach = 14;
    held_ = nullptr;
    if (!found_.face) {
        return;
    }
    imaging::Face& face = *found_.face;
    double nearest = Reach;
    for (imaging::FacePoint* point : {&face.leftEye, &face.rightEye, &face.chin, &face.crown}) {
        const QPointF off = view_.ToWidget(point->position + QPointF(0.5, 0.5)) - pointer.widget;
        const double distance = std::hypot(off.x(), off.y());
        if (distance < nearest) {
            nearest = distance;
            held_ = point;
        }
    }
}

void FaceActions::Move(const imaging::view::ToolPointer& pointer) {
    if (held_ == nullptr) {
        return;
    }
    imaging::Face& face = *found_.face;
    const bool crown = held_ == &face.crown;
    const QPointF by = pointer.photo - QPointF(0.5, 0.5) - held_->position;
    *held_ = {held_->position + by, 1};
    if (crown) {
        face.skull.position += by;
    }
    face.tiltDegrees = imaging::TiltDegrees(face.leftEye.position, face.rightEye.position);
    ShowLines();
}

void FaceActions::Release() {
    held_ = nullptr;
}

bool FaceActions::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    section_.SetPointsMovable(false);
    return true;
}

}  // namespace kadrona::app
