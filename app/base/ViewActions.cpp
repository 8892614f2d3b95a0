#include "app/base/ViewActions.h"

#include <QKeyEvent>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "core/templates/LayerPosition.h"
#include "imaging/view/ImageView.h"

namespace kadrona::app {

using imaging::LayeredImage;
using imaging::view::ImageView;

ViewActions::ViewActions(PhotoSession& session, ImageView& view, MainActions& actions)
    : session_(session), view_(view), actions_(actions) {
    actions.Connect(Action::ZoomFit, this, [this] { ZoomFit(); });
    actions.Connect(Action::ZoomFull, this, [this] { ZoomFull(); });
    actions.Connect(Action::Undo, this, [this] { acUndoExecute(); });
    actions.Connect(Action::ShowLayer, this, [this] { acShowLayerExecute(); });
    connect(&view, &ImageView::LayerChangedByUser, this, &ViewActions::ViewLayerNotify);
    connect(&view, &ImageView::MousePressed, this, &ViewActions::ViewMouseDown);
    view.installEventFilter(this);
}

void ViewActions::ShowTemplateLayer(bool show) {
    if (!session_.HasTemplate()) {
        return;
    }
    LayeredImage& image = session_.Image();
    image.SetLayerVisible(1, show, show);
    image.SetCurrentLayer(show ? 1 : 0);
    if (show && actions_.IsChecked(Action::ShowLayer)) {
        actions_.SetChecked(Action::ShowLayer, false);
    }
}

/// Checked means that the template is hidden. Triggering has toggled the action already; that is
/// taken back first, because the retouch stamp keeps it as it was.
void ViewActions::acShowLayerExecute() {
    QAction* action = actions_[Action::ShowLayer];
    const bool hide = action->isChecked();
    action->setChecked(!hide);
    if (actions_.IsChecked(Action::Beauty)) {
        return;
    }
    actions_.SetChecked(Action::ShowLayer, hide);
    ShowTemplateLayer(!hide);
}

void ViewActions::ZoomFit() {
    view_.SetAutomaticFit(true);
    view_.Fit();
    view_.SetAutomaticFit(false);
}

void ViewActions::ZoomFull() {
    view_.SetAutomaticFit(false);
    view_.SetZoomPercent(100.0);
}

void ViewActions::StartAnew() {
    actions_.LeaveModes();
    view_.SetInteraction({ImageView::Interaction::Zoom, ImageView::Interaction::Pan});
    ZoomFit();
}

/// Taking back a quarter turn fits the photo, as the turn did; anything else keeps the zoom.
void ViewActions::acUndoExecute() {
    LayeredImage& image = session_.Image();
    if (!image.CanUndo()) {
        return;
    }
    image.SetCurrentLayer(0);
    const QSize before = image.Photo().Size();
    image.Undo();
    const QSize after = image.Photo().Size();
    if (after != before) {
        KeepTemplateOnPhoto();
    }
    if (after != before && after == before.transposed()) {
        ZoomFit();
    }
}

void ViewActions::KeepTemplateOnPhoto() {
    const LayeredImage& image = session_.Image();
    const QRect photo(QPoint(), image.Photo().Size());
    if (session_.HasTemplate() && !photo.contains(image.LayerAt(1).rectangle)) {
        ViewLayerNotify(1);
    }
}

void ViewActions::ViewLayerNotify(int layer) {
    LayeredImage& image = session_.Image();
    image.SetLayerRectangle(
        layer, core::KeptInsidePhoto(image.LayerAt(layer).rectangle, image.Photo().Size()));
}

/// The retouch stamp works on the photo, whatever layer was picked.
void ViewActions::ViewMouseDown() {
    if (actions_.IsChecked(Action::Beauty) && !session_.Image().IsEmpty()) {
        session_.Image().SetCurrentLayer(0);
    }
}

bool ViewActions::eventFilter(QObject* watched, QEvent* event) {
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
    return QObject::eventFilter(watched, event);
}

/// The view shows the hand while it only pans, and its own cursors again afterwards.
void ViewActions::ViewKeyDown() {
    if (view_.CurrentInteraction().testFlag(ImageView::Interaction::Zoom)) {
        view_.SetInteraction(ImageView::Interaction::Pan);
    }
}

void ViewActions::ViewKeyUp() {
    if (view_.CurrentInteraction().testFlag(ImageView::Interaction::Pan)) {
        view_.SetInteraction({ImageView::Interaction::Zoom, ImageView::Interaction::Pan});
    }
}

}  // namespace kadrona::app
