#include "app/SheetActions.h"

#include <QFileInfo>
#include <QWidget>

#include "app/MainActions.h"
#include "app/PhotoSession.h"
#include "app/PrintFlow.h"
#include "app/ViewActions.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"

namespace kadrona::app {

SheetActions::SheetActions(PhotoSession& session, QWidget& window, core::TData& data,
                           const core::Settings& settings, core::UserInterface& ui,
                           MainActions& actions, ViewActions& viewActions, PrintFlow& printFlow)
    : session_(session),
      window_(window),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions),
      viewActions_(viewActions),
      printFlow_(printFlow) {
    actions.Connect(Action::Crop, this, [this] { acCropExecute(); });
    actions.Connect(Action::Save, this, [this] { acSaveExecute(); });
    actions.Connect(Action::SaveImageFast, this, [this] { acSaveImageFastExecute(); });
}

void SheetActions::acCropExecute() {
    imaging::LayeredImage& image = session_.Image();
    if (actions_.IsChecked(Action::Beauty) || !session_.HasTemplate()) {
        return;
    }
    image.SetCurrentLayer(0);
    if (core::AverageBrightness(image.Photo()) > core::BrightestAccepted) {
        ui_.ShowMessage(core::TooBrightWarning);
    }
    {
        const controls::WaitCursor wait;
        data_.CropImage(image, session_.LayoutIndex());
    }
    image.ClearUndo();
    session_.SetStage(PhotoSession::Stage::SheetMade);
    viewActions_.StartAnew();
    if (settings_.PrintAfterCrop()) {
        // A printer that fails must not keep the photos from being saved.
        controls::Guarded(&window_, [this] { printFlow_.acPrintImageExecute(); });
    }
    // As for the action itself: a sheet of several photos is not saved quickly.
    if (settings_.ImageAutoSave2() && session_.LayoutIndex() == core::SinglePhotoLayout) {
        acSaveImageFastExecute();
    }
}

void SheetActions::acSaveExecute() {
    const controls::WaitCursor wait;
    data_.SaveImage(session_.Image(), data_.SaveFolder(), {}, false);
}

void SheetActions::acSaveImageFastExecute() {
    const QString fileName = data_.GetFileName(settings_.FileNameEd(), settings_.FileVarCombo(),
                                               settings_.FileTypCombo());
    const controls::WaitCursor wait;
    data_.SaveImage(session_.Image(), data_.SaveFolder(), fileName, settings_.ScaleImageCk());
}

}  // namespace kadrona::app
