// How the view serves a tool.

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "imaging/view/ImageViewPrivate.h"

namespace kadrona::imaging::view {

void ImageView::Private::SetTool(ViewTool* tool) {
    if (tool == tool_) {
        return;
    }
    EndToolPress();
    EndDrag();
    tool_ = tool;
    UpdateCursor();
    UpdateOverlay();
}

ToolPointer ImageView::Private::PointerOf(QPointF widgetPosition,
                                          Qt::KeyboardModifiers modifiers) const {
    return {view_.ToImage(widgetPosition), widgetPosition, modifiers};
}

void ImageView::Private::PressTool(const QMouseEvent& event) {
    isToolPressed_ = true;
    tool_->Press(PointerOf(event.position(), event.modifiers()));
    UpdateOverlay();
}

void ImageView::Private::MoveTool(const QMouseEvent& event) {
    if (tool_ == nullptr) {
        return;
    }
    if (isToolPressed_ && !event.buttons().testFlag(Qt::LeftButton)) {
        // The release went elsewhere.
        EndToolPress();
    }
    tool_->Move(PointerOf(event.position(), event.modifiers()));
    UpdateOverlay();
}

void ImageView::Private::EndToolPress() {
    if (std::exchange(isToolPressed_, false) && tool_ != nullptr) {
        tool_->Release();
        UpdateOverlay();
    }
}

bool ImageView::Private::PassToTool(const QWheelEvent& event, double notches) {
    if (!IsToolActive() || !tool_->Wheel(notches, event.modifiers())) {
        return false;
    }
    UpdateOverlay();
    return true;
}

bool ImageView::Private::PassToTool(const QKeyEvent& event) {
    if (tool_ == nullptr || image_.IsEmpty()) {
        return false;
    }
    // A key that it leaves to the view may still change what it paints, as Shift does.
    const bool isTaken = tool_->Key(event);
    UpdateOverlay();
    return isTaken;
}

void ImageView::Private::UpdateOverlay() {
    const QRect area = tool_ != nullptr ? tool_->OverlayArea().toAlignedRect() : QRect();
    view_.update(paintedOverlay_);
    view_.update(area);
    paintedOverlay_ = area;
}

void ImageView::Private::PaintOverlay(QPainter& painter) const {
    if (tool_ != nullptr && !image_.IsEmpty()) {
        painter.setRenderHint(QPainter::Antialiasing);
        tool_->Paint(painter);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
}

void ImageView::leaveEvent(QEvent* /*event*/) {
    if (d_->tool_ != nullptr) {
        d_->tool_->Leave();
        d_->UpdateOverlay();
    }
}

}  // namespace kadrona::imaging::view
