#include "app/WindowInterface.h"

#include <QApplication>

#include "app/base/PictureFileDialog.h"
#include "app/base/SmallPicture.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/archive/ArchiveTable.h"
#include "core/base/FileDialogs.h"
#include "dialogs/adjustments/RotateDialog.h"
#include "dialogs/archive/ImageTags.h"
#include "imaging/view/ImageView.h"

namespace kadrona::app {

/// The window that the user is in: one that is modal would keep a message below it.
QWidget* WindowInterface::TopWindow() const {
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : &window_;
}

void WindowInterface::ShowMessage(const QString& text) {
    const controls::WaitCursorPause pause;
    controls::ShowInformation(TopWindow(), text);
}

bool WindowInterface::AskYesNo(const QString& text) {
    const controls::WaitCursorPause pause;
    return controls::AskYesNo(TopWindow(), text, controls::Severity::Warning);
}

bool WindowInterface::AskToRetry(const QString& text) {
    const controls::WaitCursorPause pause;
    return controls::AskToRetry(TopWindow(), text);
}

std::optional<QStringList> WindowInterface::EditTags(const imaging::Pixels& photo,
                                                     const QStringList& lines) {
    const controls::WaitCursorPause pause;
    // Whose photo gets the tags is to be seen behind the editor.
    view_.Fit();
    tagEditor_->SetPicture(QPixmap::fromImage(SmallPicture(photo, window_.devicePixelRatioF())));
    if (tagEditor_->ShowEx(core::TagText(lines)) != controls::ModalResult::Ok) {
        return std::nullopt;
    }
    return tagEditor_->Lines();
}

std::optional<QString> WindowInterface::AskForSaveFile(const core::SaveDialog& dialog) {
    const controls::WaitCursorPause pause;
    return ChooseSaveFile(&window_, dialog, saveFilters_[dialog.filter]);
}

std::optional<double> WindowInterface::AskForRotation(const imaging::Pixels& preview) {
    const controls::WaitCursorPause pause;
    return rotateDialog_->ShowEx(preview);
}

}  // namespace kadrona::app
