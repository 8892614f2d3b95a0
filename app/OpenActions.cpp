#include "app/OpenActions.h"

#include "app/MainActions.h"
#include "app/PhotoSession.h"
#include "app/PictureFileDialog.h"
#include "app/RotateActions.h"
#include "app/ViewActions.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/sheet/PhotoLoading.h"
#include "core/templates/TemplateSize.h"
#include "dialogs/ProfileChooser.h"
#include "dialogs/SettingsDialog.h"
#include "dialogs/TemplateChooser.h"
#include "imaging/view/PaintingSuspension.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString StandardProfile = u"Standard Profile"_s;

}  // namespace

OpenActions::OpenActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                         dialogs::TEinstellungenFm& settings, MainActions& actions,
                         ViewActions& viewActions, RotateActions& rotateActions)
    : session_(session),
      view_(view),
      data_(data),
      settings_(settings),
      actions_(actions),
      viewActions_(viewActions),
      templateChooser_(new dialogs::TSchabloneFm(settings, view.window())),
      profileChooser_(new dialogs::TProfileDlgFM(view.window())) {
    templateChooser_->SetRotationHandler(
        [&rotateActions](int degrees) { rotateActions.RotatePhoto(degrees); });
    templateChooser_->SetTemplates(data.GetSchablonenList(), [&data](int index) {
        return core::TemplateSize(data.GetMaskFileName(index));
    });
    actions.Connect(Action::Open, this, [this] { acOpenExecute(); });
    actions.Connect(Action::OpenWithProfile, this, [this] { acOpenWithProfileExecute(); });
}

/// The chooser may still ask the settings while it goes.
OpenActions::~OpenActions() {
    delete templateChooser_;
}

void OpenActions::acOpenExecute() {
    settings_.AktivateProfileByName(StandardProfile, false);
    ChooseAndLoad();
}

void OpenActions::acOpenWithProfileExecute() {
    profileChooser_->SetProfiles(data_.GetProfileList());
    if (profileChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    settings_.AktivateProfileByName(profileChooser_->SelectedProfile(), false);
    ChooseAndLoad();
}

void OpenActions::ChooseAndLoad() {
    data_.OpenDialog().initialFolder = data_.CurrentFileFolder();
    if (const auto file = ChoosePicture(view_.window(), data_.OpenDialog())) {
        LoadImageFile(*file);
    }
}

void OpenActions::OpenFiles(const QStringList& paths) {
    controls::Guarded(view_.window(), [&] {
        settings_.AktivateProfileByName(StandardProfile, false);
        if (!paths.isEmpty()) {
            LoadImageFile(paths.first());
        }
    });
    Q_EMIT actions_.Handled();
}

/// Where the photo cannot be read, what is enabled is as after a successful load.
void OpenActions::LoadImageFile(const QString& fileName) {
    const bool read = ReadPhoto(fileName);
    session_.SetStage(PhotoSession::Stage::PhotoOpen);
    actions_.SetChecked(Action::ShowLayer, false);
    if (!read) {
        return;
    }
    controls::Guarded(view_.window(), [this] {
        const controls::WaitCursor wait;
        core::BalancePhoto(settings_, session_.Image());
    });
    ChooseTemplate();
    data_.LoadLayer(session_.Image());
    view_.setFocus();
}

/// Brings the file into layer 0 and shows it; a failure is shown and leaves the image empty.
bool OpenActions::ReadPhoto(const QString& fileName) {
    const imaging::view::PaintingSuspension suspension(view_);
    session_.Image().Clear();
    session_.SetFileName(fileName);
    session_.SetTemplateName({});
    data_.SetCurrentFile(fileName);
    const bool read = controls::Guarded(view_.window(), [&] {
        const controls::WaitCursor wait;
        core::OpenPhoto(fileName, settings_, session_.Image());
    });
    viewActions_.StartAnew();
    return read;
}

/// A template that cannot be read is reported and leaves the photo without one.
void OpenActions::ChooseTemplate() {
    if (templateChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    controls::Guarded(view_.window(), [this] {
        const int row = templateChooser_->SelectedTemplate();
        if (data_.MaskLoadFromFile(data_.GetMaskFileName(row))) {
            session_.SetTemplateName(data_.GetSchablonenList().value(row));
            data_.DrawMask(session_.Image());
        }
    });
}

}  // namespace kadrona::app
