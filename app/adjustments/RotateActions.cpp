#include "app/adjustments/RotateActions.h"

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/ViewActions.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"

namespace kadrona::app {

using imaging::LayeredImage;

RotateActions::RotateActions(PhotoSession& session, core::TData& data, MainActions& actions,
                             ViewActions& viewActions)
    : session_(session), data_(data), viewActions_(viewActions) {
    actions.Connect(Action::RotateLeft, this, [this] { QuarterTurn(+90); });
    actions.Connect(Action::RotateRight, this, [this] { QuarterTurn(-90); });
    actions.Connect(Action::RotateDlg, this, [this] { acRotateDlgExecute(); });
}

void RotateActions::RotatePhoto(int degrees) {
    LayeredImage& image = session_.Image();
    if (!image.IsEmpty()) {
        image.TurnPhoto(degrees);
    }
    viewActions_.ZoomFit();
}

/// Turns the photo and gives the template back to the mouse, as long as there is one.
void RotateActions::QuarterTurn(int degrees) {
    LayeredImage& image = session_.Image();
    if (image.IsEmpty()) {
        return;
    }
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    RotatePhoto(degrees);
    viewActions_.KeepTemplateOnPhoto();
    if (session_.CurrentStage() != PhotoSession::Stage::SheetMade && session_.HasTemplate()) {
        image.SetCurrentLayer(1);
    }
}

/// The zoom stays: a photo that is levelled is looked at closely, and is levelled again.
template <typename Turn>
void RotateActions::TurnInOneStep(Turn&& turn) {
    LayeredImage& image = session_.Image();
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    {
        const controls::WaitCursor wait;
        turn(image);
    }
    viewActions_.KeepTemplateOnPhoto();
    if (session_.HasTemplate()) {
        image.SetCurrentLayer(1);
    }
}

void RotateActions::LevelPhoto(double degrees) {
    TurnInOneStep([degrees](LayeredImage& image) { image.TurnPhoto(degrees); });
}

void RotateActions::acRotateDlgExecute() {
    if (!session_.Image().IsEmpty()) {
        TurnInOneStep([this](LayeredImage& image) { data_.RotateImage(image); });
    }
}

}  // namespace kadrona::app
