// Opening a photo: by dialog, by drop, with a profile.

#include <QDialog>
#include <QTimer>

#include "app/MainWindow.h"
#include "app/PictureFileDialog.h"
#include "controls/fields/StatusPanels.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/sheet/PhotoLoading.h"
#include "dialogs/ProfileChooser.h"
#include "dialogs/SettingsDialog.h"
#include "dialogs/TemplateChooser.h"
#include "imaging/view/PaintingSuspension.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString StandardProfile = u"Standard Profile"_s;

}  // namespace

void TmainFm::acOpenExecute() {
    settings_->AktivateProfileByName(StandardProfile, false);
    ChooseAndLoad();
}

void TmainFm::acOpenWithProfileExecute() {
    profileChooser_->SetProfiles(data_->GetProfileList());
    if (profileChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    settings_->AktivateProfileByName(profileChooser_->SelectedProfile(), false);
    ChooseAndLoad();
}

void TmainFm::ChooseAndLoad() {
    data_->OpenDialog().initialFolder = data_->CurrentFileFolder();
    if (const auto file = ChoosePicture(this, data_->OpenDialog())) {
        LoadImageFile(*file);
    }
}

void TmainFm::OpenDroppedFiles(const QStringList& paths) {
    controls::Guarded(this, [&] {
        settings_->AktivateProfileByName(StandardProfile, false);
        if (!paths.isEmpty()) {
            LoadImageFile(paths.first());
        }
    });
    UpdateActions();
}

void TmainFm::LoadImageFile(const QString& fileName) {
    LeaveToolModes();
    const bool read = ReadPhoto(fileName);
    view_->SetInteraction(
        {imaging::view::ImageView::Interaction::Zoom, imaging::view::ImageView::Interaction::Pan});
    sheetCreated_ = false;
    imageLoaded_ = true;
    actions_.SetChecked(u"acShowLayer"_s, false);
    UpdateActions();
    if (!read) {
        view_->hide();
        emptyState_->show();
        return;
    }
    controls::Guarded(this, [this] {
        const controls::WaitCursor wait;
        core::BalancePhoto(*settings_, image_);
    });
    ChooseTemplate();
    data_->LoadLayer(image_);
    view_->setFocus();
}

/// Brings the file into layer 0 and shows it; a failure is shown and leaves the view empty.
bool TmainFm::ReadPhoto(const QString& fileName) {
    image_.Clear();
    emptyState_->hide();
    view_->show();
    const imaging::view::PaintingSuspension suspension(*view_);
    statusPanels_->SetPath(fileName);
    data_->SetCurrentFile(fileName);
    const bool read = controls::Guarded(this, [&] {
        const controls::WaitCursor wait;
        core::OpenPhoto(fileName, *settings_, image_);
    });
    acZoomFitExecute();
    return read;
}

/// A template that cannot be read is reported and leaves the photo without one.
void TmainFm::ChooseTemplate() {
    if (templateChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    controls::Guarded(this, [this] {
        const QString file = data_->GetMaskFileName(templateChooser_->SelectedTemplate());
        if (data_->MaskLoadFromFile(file)) {
            data_->DrawMask(image_);
        }
    });
}

}  // namespace kadrona::app
