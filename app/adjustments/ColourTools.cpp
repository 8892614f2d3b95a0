#include "app/adjustments/ColourTools.h"

#include <QScopeGuard>
#include <cmath>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/ViewActions.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "controls/theme/Cursors.h"
#include "dialogs/adjustments/ColourAdjustment.h"
#include "dialogs/curves/RgbCurves.h"
#include "imaging/tone/ColourEffects.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::LayeredImage;

namespace {

constexpr Action WhitePoint = Action::SetWhitePoint;

QRgb PixelAt(const imaging::Pixels& photo, QPoint pixel) {
    return photo.Tile().pixel(pixel.x() % photo.Tile().width(), pixel.y() % photo.Tile().height());
}

}  // namespace

ColourTools::ColourTools(PhotoSession& session, imaging::view::ImageView& view,
                         MainActions& actions, ViewActions& viewActions,
                         dialogs::TfmRGBKurve& curveDialog)
    : session_(session),
      view_(view),
      actions_(actions),
      viewActions_(viewActions),
      curveDialog_(curveDialog) {
    actions.Connect(WhitePoint, this, [this] { acSetWhitePointExecute(); });
    actions.Connect(Action::Gradation, this, [this] { acGradationExecute(); });
    actions.Connect(Action::Schwarzweiss, this, [this] { acSchwarzweissExecute(); });
    actions.Connect(Action::ColorConfig, this, [this] { acColorConfigExecute(); });
    connect(actions_[WhitePoint], &QAction::toggled, this, &ColourTools::FollowWhitePointAction);
    // A setting can take the action away while its mode is on.
    connect(actions_[WhitePoint], &QAction::changed, this, [this] {
        const QAction& action = *actions_[WhitePoint];
        if (action.isChecked() && !action.isVisible()) {
            LeaveMode();
            viewActions_.ShowTemplateLayer(true);
        }
    });
}

ColourTools::~ColourTools() {
    LeaveMode();
}

bool ColourTools::MayWork() const {
    return !actions_.IsChecked(Action::Beauty) && !session_.Image().IsEmpty();
}

bool ColourTools::TemplateIsHidden() const {
    return actions_.IsChecked(Action::ShowLayer);
}

/// Triggering has toggled the action already; that is taken back where it may not.
void ColourTools::acSetWhitePointExecute() {
    const bool checked = actions_.IsChecked(WhitePoint);
    if (!MayWork()) {
        actions_.SetChecked(WhitePoint, false);
        return;
    }
    actions_.SetChecked(WhitePoint, checked);
    viewActions_.ShowTemplateLayer(!checked);
    checked ? viewActions_.ZoomFit() : viewActions_.ZoomFull();
}

/// Whatever unchecks the action ends the mode.
void ColourTools::FollowWhitePointAction(bool checked) {
    if (checked && MayWork()) {
        view_.SetTool(this);
        view_.setCursor(controls::PipetteCursor());
        view_.setFocus();
    } else if (view_.Tool() == this) {
        view_.SetTool(nullptr);
        view_.unsetCursor();
    }
}

void ColourTools::LeaveMode() {
    actions_.SetChecked(WhitePoint, false);
}

void ColourTools::Press(const imaging::view::ToolPointer& pointer) {
    const QPoint pixel(static_cast<int>(std::floor(pointer.photo.x())),
                       static_cast<int>(std::floor(pointer.photo.y())));
    const QRect photo(QPoint(), session_.Image().Photo().Size());
    if (photo.contains(pixel)) {
        controls::Guarded(view_.window(), [&] { SetWhitePoint(pixel); });
    }
}

/// Escape gives the template back and leaves the zoom alone.
bool ColourTools::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    LeaveMode();
    viewActions_.ShowTemplateLayer(true);
    return true;
}

/// White balance and levels are one change, so that they are one undo step.
void ColourTools::SetWhitePoint(QPoint pixel) {
    LayeredImage& image = session_.Image();
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    {
        const controls::WaitCursor wait;
        const imaging::Pixels balanced = imaging::Filtered(
            image.Photo(), *imaging::WhitePointFilter(PixelAt(image.Photo(), pixel)));
        image.ChangePhoto(imaging::Filtered(balanced, *imaging::GainAndOffsetFilter(
                                                          imaging::HistogramOf(balanced))),
                          imaging::PhotoEdit::Colours);
    }
    actions_.SetChecked(WhitePoint, false);
    viewActions_.ShowTemplateLayer(true);
}

void ColourTools::acGradationExecute() {
    if (!MayWork()) {
        return;
    }
    LayeredImage& image = session_.Image();
    if (!TemplateIsHidden()) {
        viewActions_.ShowTemplateLayer(false);
    }
    const auto showAgain = qScopeGuard([this] {
        if (!TemplateIsHidden()) {
            viewActions_.ShowTemplateLayer(true);
        }
    });
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    if (curveDialog_.ShowEx(view_) != controls::ModalResult::Ok) {
        image.Undo();
    }
}

void ColourTools::acSchwarzweissExecute() {
    if (!MayWork()) {
        return;
    }
    LayeredImage& image = session_.Image();
    image.SetCurrentLayer(0);
    image.RecordUndoStep();
    {
        const controls::WaitCursor wait;
        image.ChangePhoto(imaging::Filtered(image.Photo(), *imaging::GreyFilter()),
                          imaging::PhotoEdit::Colours);
    }
    if (image.LayerCount() >= 2) {
        image.SetCurrentLayer(1);
    }
}

/// The step recorded after the change holds the adjusted photo; the one before it, which the change
/// records by itself, the photo as it was.
void ColourTools::acColorConfigExecute() {
    if (!MayWork()) {
        return;
    }
    LayeredImage& image = session_.Image();
    viewActions_.ShowTemplateLayer(false);
    const auto showAgain = qScopeGuard([this] { viewActions_.ShowTemplateLayer(true); });
    if (colourDialog_ == nullptr) {
        colourDialog_ = new dialogs::ColourAdjustment(view_.window());
    }
    if (colourDialog_->ShowEx(image.Photo()) == controls::ModalResult::Ok) {
        if (const imaging::PixelFilterPointer filter = colourDialog_->Filter()) {
            const controls::WaitCursor wait;
            image.ChangePhoto(imaging::Filtered(image.Photo(), *filter),
                              imaging::PhotoEdit::Colours);
        }
        image.RecordUndoStep();
    }
}

}  // namespace kadrona::app
