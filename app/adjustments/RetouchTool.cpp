#include "app/adjustments/RetouchTool.h"

#include <QStatusBar>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/ViewActions.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Cursors.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using imaging::view::ToolPointer;

namespace {

constexpr Action Retouch = Action::Beauty;

constexpr double SmallestDiameter = 1;
constexpr double LargestDiameter = 2000;
constexpr double SizeStep = 1.15;
constexpr double SoftnessStep = 0.05;
/// Of the photo's long side: about an eye's width in a portrait.
constexpr double BrushesPerPhoto = 60;
// In logical pixels.
constexpr double CrossReach = 9;
constexpr double OverlayMargin = 4;

constexpr QColor Light(255, 255, 255, 220);
constexpr QColor Dark(0, 0, 0, 200);

}  // namespace

RetouchTool::RetouchTool(PhotoSession& session, imaging::view::ImageView& view,
                         QStatusBar& statusBar, MainActions& actions, ViewActions& viewActions)
    : session_(session),
      view_(view),
      statusBar_(statusBar),
      actions_(actions),
      viewActions_(viewActions),
      stamp_(session.Image()) {
    actions.Connect(Retouch, this, [this] { acBeautyExecute(); });
    connect(actions_[Retouch], &QAction::toggled, this, &RetouchTool::FollowAction);
    connect(&session_.Image(), &imaging::LayeredImage::PhotoChanged, this,
            &RetouchTool::FollowPhoto);
    // Also where the photo keeps its size, as a square one does.
    connect(&session_.Image(), &imaging::LayeredImage::PhotoTurned, this,
            &RetouchTool::ForgetSource);
}

RetouchTool::~RetouchTool() {
    LeaveMode();
}

/// Triggering has toggled the action already; that is taken back where a photo could not be read.
void RetouchTool::acBeautyExecute() {
    const bool checked = actions_.IsChecked(Retouch) && !session_.Image().IsEmpty();
    actions_.SetChecked(Retouch, checked);
    viewActions_.ShowTemplateLayer(!checked);
    if (checked) {
        session_.Image().SetCurrentLayer(0);
        session_.Image().RecordUndoStep();
    }
}

/// Whatever unchecks the action ends the mode.
void RetouchTool::FollowAction(bool checked) {
    if (checked) {
        view_.SetTool(this);
        view_.setCursor(controls::StampCursor());
        view_.setFocus();
        ShowHint();
    } else if (view_.Tool() == this) {
        view_.SetTool(nullptr);
        view_.unsetCursor();
        statusBar_.clearMessage();
    }
}

void RetouchTool::LeaveMode() {
    actions_.SetChecked(Retouch, false);
    stamp_.Reset();
}

/// A photo of another size has no place for the old source, and wants another brush as long as
/// nobody has chosen one.
void RetouchTool::FollowPhoto() {
    const QSize size = session_.Image().Photo().Size();
    if (size == photoSize_) {
        return;
    }
    photoSize_ = size;
    if (!isBrushChosen_) {
        brush_.diameter =
            std::clamp(std::floor(std::max(size.width(), size.height()) / BrushesPerPhoto),
                       SmallestDiameter, LargestDiameter);
    }
    ForgetSource();
}

void RetouchTool::ForgetSource() {
    stamp_.Reset();
    if (view_.Tool() == this) {
        ShowHint();
        view_.RefreshTool();
    }
}

/// One hint at a time: the status bar of a window of the designed size holds no more.
void RetouchTool::ShowHint() {
    const QString next = stamp_.HasSource() ? u"Mausrad: Größe, mit Umschalt: Weichheit"_s
                                            : u"Umschalt+Klick nimmt auf, woher kopiert wird"_s;
    statusBar_.showMessage(u"Stempel %1 px, Weichheit %2 %  –  %3"_s.arg(
        QString::number(std::lround(brush_.diameter)),
        QString::number(std::lround(brush_.softness * 100)), next));
}

bool RetouchTool::IsOnPhoto(QPointF photo) const {
    return photo.x() >= 0 && photo.y() >= 0 && photo.x() < photoSize_.width() &&
           photo.y() < photoSize_.height();
}

void RetouchTool::Press(const ToolPointer& pointer) {
    Move(pointer);
    if (!IsOnPhoto(pointer.photo)) {
        return;
    }
    if (takesSource_) {
        stamp_.TakeSource(pointer.photo);
    } else if (!stamp_.HasSource()) {
        QToolTip::showText(view_.mapToGlobal(pointer.widget.toPoint()),
                           u"Zuerst mit gedrückter Umschalttaste anklicken, woher kopiert wird."_s,
                           &view_);
    } else {
        controls::Guarded(view_.window(), [&] { stamp_.BeginStroke(pointer.photo, brush_); });
    }
    ShowHint();
}

void RetouchTool::Move(const ToolPointer& pointer) {
    pointer_ = pointer.widget;
    takesSource_ = pointer.modifiers.testFlag(Qt::ShiftModifier);
    if (stamp_.IsStroking()) {
        const bool drawn =
            controls::Guarded(view_.window(), [&] { stamp_.ContinueStroke(pointer.photo); });
        if (!drawn) {
            stamp_.EndStroke();
        }
    }
}

void RetouchTool::Release() {
    stamp_.EndStroke();
}

void RetouchTool::Leave() {
    pointer_.reset();
}

void RetouchTool::ChangeSize(double notches) {
    const double scaled = brush_.diameter * std::pow(SizeStep, notches);
    // A small brush grows by whole pixels.
    const double least = brush_.diameter + std::copysign(std::min(1.0, std::abs(notches)), notches);
    brush_.diameter = std::clamp(notches > 0 ? std::max(scaled, least) : std::min(scaled, least),
                                 SmallestDiameter, LargestDiameter);
    isBrushChosen_ = true;
    ShowHint();
}

void RetouchTool::ChangeSoftness(double notches) {
    brush_.softness = std::clamp(brush_.softness + notches * SoftnessStep, 0.0, 1.0);
    ShowHint();
}

bool RetouchTool::Wheel(double notches, Qt::KeyboardModifiers modifiers) {
    modifiers.testFlag(Qt::ShiftModifier) ? ChangeSoftness(notches) : ChangeSize(notches);
    return true;
}

bool RetouchTool::Key(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Shift) {
        takesSource_ = event.type() == QEvent::KeyPress;
        return false;
    }
    if (event.type() == QEvent::KeyPress && event.key() == Qt::Key_Escape) {
        LeaveMode();
        viewActions_.ShowTemplateLayer(true);
        return true;
    }
    const QString text = event.text();
    if (event.type() != QEvent::KeyPress || text.size() != 1) {
        return false;
    }
    if (text == u"+"_s || text == u"]"_s) {
        ChangeSize(1);
    } else if (text == u"-"_s || text == u"["_s) {
        ChangeSize(-1);
    } else if (text == u"."_s) {
        ChangeSoftness(1);
    } else if (text == u","_s) {
        ChangeSoftness(-1);
    } else {
        return false;
    }
    return true;
}

double RetouchTool::WidgetRadius() const {
    return view_.ToWidget({brush_.diameter / 2, 0}).x() - view_.ToWidget({0, 0}).x();
}

/// Where the pointer copies from, in the view's coordinates.
std::optional<QPointF> RetouchTool::SourceMark() const {
    if (!pointer_ || takesSource_) {
        return std::nullopt;
    }
    const auto source = stamp_.SourceFor(view_.ToImage(*pointer_));
    return source ? std::optional(view_.ToWidget(*source)) : std::nullopt;
}

QRectF RetouchTool::OverlayArea() const {
    if (!pointer_) {
        return {};
    }
    const auto around = [](QPointF middle, double reach) {
        return QRectF(middle.x() - reach, middle.y() - reach, 2 * reach, 2 * reach);
    };
    QRectF area = around(*pointer_, std::max(WidgetRadius(), CrossReach) + OverlayMargin);
    if (const auto source = SourceMark()) {
        area |= around(*source, CrossReach + OverlayMargin);
    }
    return area;
}

void RetouchTool::Paint(QPainter& painter) const {
    if (!pointer_) {
        return;
    }
    if (takesSource_) {
        PaintCross(painter, *pointer_);
        return;
    }
    PaintBrush(painter);
    if (const auto source = SourceMark()) {
        PaintCross(painter, *source);
    }
}

/// The circle of the whole brush, and dashed in it where a soft one still covers fully.
void RetouchTool::PaintBrush(QPainter& painter) const {
    const QPointF middle = *pointer_;
    const double radius = std::max(WidgetRadius(), 1.0);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Dark, 2.5));
    painter.drawEllipse(middle, radius, radius);
    painter.setPen(QPen(Light, 1.2));
    painter.drawEllipse(middle, radius, radius);
    const double core = radius * (1 - brush_.softness);
    if (core >= 3 && radius - core >= 3) {
        painter.setPen(QPen(Dark, 1));
        painter.drawEllipse(middle, core, core);
        painter.setPen(QPen(Light, 1, Qt::DashLine));
        painter.drawEllipse(middle, core, core);
    }
}

void RetouchTool::PaintCross(QPainter& painter, QPointF middle) {
    for (const QPen& pen : {QPen(Dark, 3), QPen(Light, 1.2)}) {
        painter.setPen(pen);
        painter.drawLine(middle - QPointF(CrossReach, 0), middle + QPointF(CrossReach, 0));
        painter.drawLine(middle - QPointF(0, CrossReach), middle + QPointF(0, CrossReach));
    }
}

}  // namespace kadrona::app
