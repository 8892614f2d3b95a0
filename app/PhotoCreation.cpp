// "Passbilder erstellen".

#include <QComboBox>

#include "app/MainWindow.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/SettingsDialog.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

void TmainFm::acCropExecute() {
    if (actions_.IsChecked(u"acBeauty"_s) || image_.LayerCount() < 2) {
        return;
    }
    LeaveToolModes();
    image_.SetCurrentLayer(0);
    if (core::AverageBrightness(image_.Photo()) > core::BrightestAccepted) {
        ShowMessage(core::TooBrightWarning);
    }
    {
        const controls::WaitCursor wait;
        data_->CropImage(image_, pictureCount_->currentIndex());
    }
    sheetCreated_ = true;
    image_.ClearUndo();
    view_->SetInteraction(
        {imaging::view::ImageView::Interaction::Zoom, imaging::view::ImageView::Interaction::Pan});
    acZoomFitExecute();
    UpdateActions();
    if (settings_->PrintAfterCrop()) {
        // A printer that fails must not keep the photos from being saved.
        controls::Guarded(this, [this] { acPrintImageExecute(); });
    }
    // As for the action itself: a sheet of several photos is not saved quickly.
    if (settings_->ImageAutoSave2() && pictureCount_->currentIndex() == core::SinglePhotoLayout) {
        acSaveImageFastExecute();
    }
}

}  // namespace kadrona::app
