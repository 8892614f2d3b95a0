// "Speichern": under a name that the user chooses, and quickly under a generated one.

#include "app/MainWindow.h"
#include "app/PictureFileDialog.h"
#include "controls/messages/WaitCursor.h"
#include "dialogs/SettingsDialog.h"

namespace kadrona::app {

void TmainFm::acSaveExecute() {
    const controls::WaitCursor wait;
    data_->SaveImage(image_, data_->SaveFolder(), {}, false);
}

void TmainFm::acSaveImageFastExecute() {
    const QString fileName = data_->GetFileName(settings_->FileNameEd(), settings_->FileVarCombo(),
                                                settings_->FileTypCombo());
    const controls::WaitCursor wait;
    data_->SaveImage(image_, data_->SaveFolder(), fileName, settings_->ScaleImageCk());
}

std::optional<QString> TmainFm::AskForSaveFile(const core::SaveDialog& dialog) {
    const controls::WaitCursorPause pause;
    return ChooseSaveFile(this, dialog, saveFilter_);
}

}  // namespace kadrona::app
