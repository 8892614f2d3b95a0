#include "app/WindowInterface.h"

#include <QApplication>

#include "app/PictureFileDialog.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "dialogs/ImageTags.h"
#include "dialogs/RotateDialog.h"
#include "imaging/view/ImageView.h"

namespace kadrona::app {

/// Over the window that the user is in: one that is modal would keep a message below it.
void WindowInterface::ShowMessage(const QString& text) {
    const controls::WaitCursorPause pause;
    QWidget* modal = QApplication::activeModalWidget();
    controls::ShowInformation(modal != nullptr ? modal : &window_, text);
}

std::optional<QStringList> WindowInterface::EditTags() {
    const controls::WaitCursorPause pause;
    // Whose photo gets the tags is to be seen behind the editor.
    view_.Fit();
    if (tagEditor_->ShowEx() != controls::ModalResult::Ok) {
        return std::nullopt;
    }
    return tagEditor_->Lines();
}

std::optional<QString> WindowInterface::AskForSaveFile(const core::SaveDialog& dialog) {
    const controls::WaitCursorPause pause;
    return ChooseSaveFile(&window_, dialog, saveFilter_);
}

std::optional<double> WindowInterface::AskForRotation(const imaging::Pixels& preview) {
    const controls::WaitCursorPause pause;
    return rotateDialog_->ShowEx(preview);
}

}  // namespace kadrona::app
