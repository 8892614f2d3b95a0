// Looking at the photo: zoom, panning keys, undo, quarter turns, and the template layer over it.

#include <QKeyEvent>
#include <QScopeGuard>
#include <stdexcept>

#include "app/MainWindow.h"
#include "controls/messages/ActionGuard.h"
#include "core/base/Product.h"
#include "core/templates/LayerPosition.h"
#include "dialogs/RotateDialog.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/view/ImageView.h"
#include "platform/WebPage.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::view::ImageView;

void TmainFm::ShowTemplateLayer(bool show) {
    if (image_.LayerCount() < 2) {
        return;
    }
    image_.SetLayerVisible(1, show, show);
    image_.SetCurrentLayer(show ? 1 : 0);
    if (show && actions_.IsChecked(u"acShowLayer"_s)) {
        actions_.SetChecked(u"acShowLayer"_s, false);
    }
}

/// Checked means that the template is hidden. Triggering has toggled the action already; that is
/// taken back first, because the retouch stamp keeps it as it was.
void TmainFm::acShowLayerExecute() {
    QAction* action = actions_[u"acShowLayer"_s];
    const bool hide = action->isChecked();
    action->setChecked(!hide);
    if (actions_.IsChecked(u"acBeauty"_s)) {
        return;
    }
    actions_.SetChecked(u"acShowLayer"_s, hide);
    ShowTemplateLayer(!hide);
}

void TmainFm::acZoomFitExecute() {
    view_->SetAutomaticFit(true);
    view_->Fit();
    view_->SetAutomaticFit(false);
}

void TmainFm::acZoomFullExecute() {
    view_->SetAutomaticFit(false);
    view_->SetZoomPercent(100.0);
}

void TmainFm::acUndoExecute() {
    if (!image_.CanUndo()) {
        return;
    }
    image_.SetCurrentLayer(0);
    const QSize before = image_.Photo().Size();
    image_.Undo();
    if (image_.Photo().Size() != before) {
        KeepTemplateOnPhoto();
        acZoomFitExecute();
    }
}

/// A photo of another shape must not leave its template outside, where nobody can take hold of it.
void TmainFm::KeepTemplateOnPhoto() {
    const QRect photo(QPoint(), image_.Photo().Size());
    if (image_.LayerCount() >= 2 && !photo.contains(image_.LayerAt(1).rectangle)) {
        ViewLayerNotify(1);
    }
}

void TmainFm::acRotateLeftExecute() {
    QuarterTurn(+90);
}

void TmainFm::acRotateRightExecute() {
    QuarterTurn(-90);
}

/// Turns the photo and gives the template back to the mouse, as long as there is one.
void TmainFm::QuarterTurn(int degrees) {
    if (image_.IsEmpty()) {
        return;
    }
    image_.RecordUndoStep();
    image_.SetCurrentLayer(0);
    RotatePhoto(degrees);
    KeepTemplateOnPhoto();
    if (!sheetCreated_ && image_.LayerCount() >= 2) {
        image_.SetCurrentLayer(1);
    }
    acZoomFitExecute();
}

void TmainFm::acRotateDlgExecute() {
    if (image_.IsEmpty()) {
        return;
    }
    image_.RecordUndoStep();
    image_.SetCurrentLayer(0);
    const QSize before = image_.Photo().Size();
    {
        const auto stopWaiting = qScopeGuard([this] { turning_.reset(); });
        data_->RotateImage(image_);
    }
    if (image_.Photo().Size() != before) {
        KeepTemplateOnPhoto();
        acZoomFitExecute();
    }
    if (image_.LayerCount() >= 2) {
        image_.SetCurrentLayer(1);
    }
}

/// The wait begins with the answer and lasts until the whole photo is turned.
std::optional<double> TmainFm::AskForRotation(const imaging::Pixels& preview) {
    const auto degrees = rotateDialog_->ShowEx(preview);
    if (degrees) {
        turning_.emplace();
    }
    return degrees;
}

void TmainFm::RotatePhoto(int degrees) {
    if (!image_.IsEmpty()) {
        const auto turn =
            degrees > 0 ? imaging::QuarterTurn::CounterClockwise : imaging::QuarterTurn::Clockwise;
        image_.ChangePhoto(imaging::Turned(image_.Photo(), turn));
    }
}

void TmainFm::ViewLayerNotify(int layer) {
    image_.SetLayerRectangle(
        layer, core::KeptInsidePhoto(image_.LayerAt(layer).rectangle, image_.Photo().Size()));
}

/// The retouch stamp works on the photo, whatever layer was picked.
void TmainFm::ViewMouseDown() {
    if (actions_.IsChecked(u"acBeauty"_s) && !image_.IsEmpty()) {
        image_.SetCurrentLayer(0);
    }
}

bool TmainFm::eventFilter(QObject* watched, QEvent* event) {
    if (watched != view_) {
        return QMainWindow::eventFilter(watched, event);
    }
    if (event->type() == QEvent::FocusOut) {
        // The release of a held key goes to whoever has the focus then.
        ViewKeyUp();
    } else if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool panningKey = key->key() == Qt::Key_Control || key->key() == Qt::Key_Space;
        if (panningKey && !key->isAutoRepeat()) {
            event->type() == QEvent::KeyPress ? ViewKeyDown() : ViewKeyUp();
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

/// The view shows the hand while it only pans, and its own cursors again afterwards.
void TmainFm::ViewKeyDown() {
    if (view_->CurrentInteraction().testFlag(ImageView::Interaction::Zoom)) {
        view_->SetInteraction(ImageView::Interaction::Pan);
    }
}

void TmainFm::ViewKeyUp() {
    if (view_->CurrentInteraction().testFlag(ImageView::Interaction::Pan)) {
        view_->SetInteraction({ImageView::Interaction::Zoom, ImageView::Interaction::Pan});
    }
}

void TmainFm::StatusBarPanel2Click() {
    controls::Guarded(this, [] {
        if (!platform::OpenWebPage(QUrl(core::MakerHomePage.toString()))) {
            throw platform::Error(
                u"Die Seite %1 konnte nicht geöffnet werden: Es wurde kein "
                u"Webbrowser gefunden."_s.arg(core::MakerHomePage));
        }
    });
}

}  // namespace kadrona::app
