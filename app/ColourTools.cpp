#include "app/ColourTools.h"

#include <QScopeGuard>
#include <cmath>

#include "app/MainActions.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "controls/theme/Cursors.h"
#include "dialogs/ColourAdjustment.h"
#include "dialogs/curves/RgbCurves.h"
#include "imaging/tone/ColourEffects.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::LayeredImage;

namespace {

const QString WhitePoint = u"acSetWhitePoint"_s;

QRgb PixelAt(const imaging::Pixels& photo, QPoint pixel) {
    return photo.Tile().pixel(pixel.x() % photo.Tile().width(), pixel.y() % photo.Tile().height());
}

}  // namespace

ColourTools::ColourTools(ToolSurroundings surroundings, QObject* parent)
    : QObject(parent), window_(std::move(surroundings)) {
    connect(window_.actions[WhitePoint], &QAction::toggled, this,
            &ColourTools::FollowWhitePointAction);
    // A setting can take the action away while its mode is on.
    connect(window_.actions[WhitePoint], &QAction::changed, this, [this] {
        const QAction& action = *window_.actions[WhitePoint];
        if (action.isChecked() && !action.isVisible()) {
            LeaveMode();
            window_.showTemplateLayer(true);
        }
    });
}

ColourTools::~ColourTools() {
    LeaveMode();
}

bool ColourTools::MayWork() const {
    return !window_.actions.IsChecked(u"acBeauty"_s) && !window_.view.Image().IsEmpty();
}

bool ColourTools::TemplateIsHidden() const {
    return window_.actions.IsChecked(u"acShowLayer"_s);
}

/// Triggering has toggled the action already; that is taken back where it may not.
void ColourTools::acSetWhitePointExecute() {
    const bool checked = window_.actions.IsChecked(WhitePoint);
    if (!MayWork()) {
        window_.actions.SetChecked(WhitePoint, false);
        return;
    }
    window_.actions.SetChecked(WhitePoint, checked);
    window_.showTemplateLayer(!checked);
    checked ? window_.zoomFit() : window_.zoomFull();
}

/// Whatever unchecks the action ends the mode.
void ColourTools::FollowWhitePointAction(bool checked) {
    imaging::view::ImageView& view = window_.view;
    if (checked && MayWork()) {
        view.SetTool(this);
        view.setCursor(controls::PipetteCursor());
        view.setFocus();
    } else if (view.Tool() == this) {
        view.SetTool(nullptr);
        view.unsetCursor();
    }
}

void ColourTools::LeaveMode() {
    window_.actions.SetChecked(WhitePoint, false);
}

void ColourTools::Press(const imaging::view::ToolPointer& pointer) {
    const QPoint pixel(static_cast<int>(std::floor(pointer.photo.x())),
                       static_cast<int>(std::floor(pointer.photo.y())));
    const QRect photo(QPoint(), window_.view.Image().Photo().Size());
    if (photo.contains(pixel)) {
        controls::Guarded(window_.view.window(), [&] { SetWhitePoint(pixel); });
    }
}

/// Escape gives the template back and leaves the zoom alone.
bool ColourTools::Key(const QKeyEvent& event) {
    if (event.type() != QEvent::KeyPress || event.key() != Qt::Key_Escape) {
        return false;
    }
    LeaveMode();
    window_.showTemplateLayer(true);
    return true;
}

/// White balance and levels are one change, so that they are one undo step.
void ColourTools::SetWhitePoint(QPoint pixel) {
    LayeredImage& image = window_.view.Image();
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    {
        const controls::WaitCursor wait;
        const imaging::Pixels balanced = imaging::Filtered(
            image.Photo(), *imaging::WhitePointFilter(PixelAt(image.Photo(), pixel)));
        image.ChangePhoto(imaging::Filtered(
            balanced, *imaging::GainAndOffsetFilter(imaging::HistogramOf(balanced))));
    }
    window_.actions.SetChecked(WhitePoint, false);
    window_.showTemplateLayer(true);
}

void ColourTools::acGradationExecute(dialogs::TfmRGBKurve& dialog) {
    if (!MayWork()) {
        return;
    }
    LayeredImage& image = window_.view.Image();
    if (!TemplateIsHidden()) {
        window_.showTemplateLayer(false);
    }
    const auto showAgain = qScopeGuard([this] {
        if (!TemplateIsHidden()) {
            window_.showTemplateLayer(true);
        }
    });
    image.RecordUndoStep();
    image.SetCurrentLayer(0);
    if (dialog.ShowEx(window_.view) != controls::ModalResult::Ok) {
        image.Undo();
    }
}

void ColourTools::acSchwarzweissExecute() {
    if (!MayWork()) {
        return;
    }
    LayeredImage& image = window_.view.Image();
    image.SetCurrentLayer(0);
    image.RecordUndoStep();
    {
        const controls::WaitCursor wait;
        image.ChangePhoto(imaging::Filtered(image.Photo(), *imaging::GreyFilter()));
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
    LayeredImage& image = window_.view.Image();
    window_.showTemplateLayer(false);
    const auto showAgain = qScopeGuard([this] { window_.showTemplateLayer(true); });
    if (colourDialog_ == nullptr) {
        colourDialog_ = new dialogs::ColourAdjustment(window_.view.window());
    }
    if (colourDialog_->ShowEx(image.Photo()) == controls::ModalResult::Ok) {
        if (const imaging::PixelFilterPointer filter = colourDialog_->Filter()) {
            const controls::WaitCursor wait;
            image.ChangePhoto(imaging::Filtered(image.Photo(), *filter));
        }
        image.RecordUndoStep();
    }
}

}  // namespace kadrona::app
