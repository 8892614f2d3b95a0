#include <QGestureEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QWheelEvent>

#include "imaging/view/ImageViewPrivate.h"

namespace kadrona::imaging::view {

namespace {

// Eighths of a degree, as QWheelEvent counts.
constexpr double WheelNotch = 120.0;
// In logical pixels. A click that trembles leaves the layer where it is.
constexpr double DragThreshold = 2.0;
constexpr int PanStep = 40;
constexpr int ShiftFactor = 10;

std::optional<QPoint> ArrowDirection(int key) {
    switch (key) {
        case Qt::Key_Left:
            return QPoint(-1, 0);
        case Qt::Key_Right:
            return QPoint(1, 0);
        case Qt::Key_Up:
            return QPoint(0, -1);
        case Qt::Key_Down:
            return QPoint(0, 1);
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<ImageView::Private::Target> ImageView::Private::TargetAt(QPointF position) const {
    if (tool_ != nullptr) {
        return std::nullopt;
    }
    const int current = image_.CurrentLayer();
    if (IsFramed(image_, current)) {
        const QRect place = geometry_.ToDevice(image_.LayerAt(current).rectangle);
        if (const auto handle = SelectionFrame(DeviceScale()).Handles(place).HandleAt(position)) {
            return Target{current, *handle};
        }
    }
    for (int i = image_.LayerCount() - 1; i > 0; --i) {
        const Layer& layer = image_.LayerAt(i);
        if (layer.visible && QRectF(geometry_.ToDevice(layer.rectangle)).contains(position)) {
            return Target{i, Handle()};
        }
    }
    return std::nullopt;
}

void ImageView::Private::Press(QPointF position, Qt::MouseButton button) {
    pointer_ = position;
    const bool isPanButton = button == Qt::MiddleButton || IsPanOnly();
    if (IsDragging() || isToolPressed_ || image_.IsEmpty() ||
        (button != Qt::LeftButton && button != Qt::MiddleButton)) {
        return;
    }
    const auto target = isPanButton ? std::nullopt : TargetAt(position);
    if (target) {
        StartLayerDrag(*target, position);
    } else if (interactions_.testFlag(Interaction::Pan)) {
        drag_ = PanDrag{geometry_.ToImage(position), button};
    }
    UpdateCursor();
}

void ImageView::Private::StartLayerDrag(const Target& target, QPointF position) {
    image_.SetCurrentLayer(target.layer);
    const QRect& rectangle = image_.LayerAt(target.layer).rectangle;
    drag_ = MovedLayer{
        target.layer,
        LayerDrag(rectangle, target.handle, geometry_.ToImage(position), image_.Photo().Size()),
        position, false};
}

void ImageView::Private::MoveTo(QPointF position) {
    pointer_ = position;
    if (const auto* pan = std::get_if<PanDrag>(&drag_)) {
        Pan(pan->imagePoint, position);
    } else if (auto* moved = std::get_if<MovedLayer>(&drag_)) {
        const QPointF way = position - moved->pressedAt;
        moved->isMoving |= way.manhattanLength() >= DragThreshold * DeviceScale();
        if (moved->isMoving) {
            SetLayerByUser(moved->layer, moved->drag.RectangleAt(geometry_.ToImage(position)));
        }
    }
    UpdateCursor();
}

void ImageView::Private::SetLayerByUser(int layer, const QRect& rectangle) {
    if (image_.LayerAt(layer).rectangle == rectangle) {
        return;
    }
    if (image_.LayerAt(layer).rectangle.size() != rectangle.size()) {
        StartMoving();
    }
    image_.SetLayerRectangle(layer, rectangle);
    Q_EMIT view_.LayerChangedByUser(layer);
}

void ImageView::Private::EndDrag() {
    drag_ = std::monostate();
    UpdateCursor();
}

void ImageView::Private::CancelDrag() {
    if (const auto* moved = std::get_if<MovedLayer>(&drag_)) {
        const int layer = moved->layer;
        const QRect start = moved->drag.Start();
        drag_ = std::monostate();
        SetLayerByUser(layer, start);
    }
    EndDrag();
}

void ImageView::Private::UpdateCursor() {
    if (std::holds_alternative<PanDrag>(drag_)) {
        cursor_.Set(Qt::ClosedHandCursor);
    } else if (IsDragging()) {
        // Keeps the cursor of the press, wherever the pointer gets to.
    } else if (IsPanOnly() && !image_.IsEmpty()) {
        cursor_.Set(Qt::OpenHandCursor);
    } else if (const auto target = TargetAt(pointer_)) {
        cursor_.Set(CursorFor(target->handle));
    } else {
        cursor_.Set(std::nullopt);
    }
}

bool ImageView::Private::MoveCurrentLayer(QPoint by) {
    const int current = image_.CurrentLayer();
    if (current <= 0 || IsPanOnly() || !image_.LayerAt(current).visible) {
        return false;
    }
    SetLayerByUser(current, image_.LayerAt(current).rectangle.translated(by));
    return true;
}

bool ImageView::Private::ScaleCurrentLayer(int by) {
    const int current = image_.CurrentLayer();
    if (current <= 0 || IsDragging() || !image_.LayerAt(current).visible) {
        return false;
    }
    const Layer& layer = image_.LayerAt(current);
    SetLayerByUser(current, ScaledAboutMiddle(layer.rectangle, layer.pixels.Size(), by,
                                              image_.Photo().Size()));
    return true;
}

/// Ctrl with an arrow: the current layer grows to the right and upwards.
bool ImageView::Private::PressScalingKey(int key, bool shift) {
    const auto direction = ArrowDirection(key);
    const int step = shift ? ShiftFactor : 1;
    return direction && ScaleCurrentLayer((direction->x() - direction->y()) * step);
}

bool ImageView::Private::PressKey(int key, bool shift) {
    if (IsDragging()) {
        if (key == Qt::Key_Escape) {
            CancelDrag();
        }
        return key == Qt::Key_Escape;
    }
    if (image_.IsEmpty()) {
        return false;
    }
    if (key == Qt::Key_Plus || key == Qt::Key_Minus) {
        const double notches = key == Qt::Key_Plus ? 1 : -1;
        ZoomByUser(SteppedZoom(geometry_.Zoom(), notches), geometry_.ViewCentre());
        return true;
    }
    const auto direction = ArrowDirection(key);
    if (!direction) {
        return false;
    }
    const int factor = shift ? ShiftFactor : 1;
    if (!MoveCurrentLayer(*direction * factor) && interactions_.testFlag(Interaction::Pan)) {
        // Towards the arrow goes the view, so the image goes the other way.
        const QPointF centre = geometry_.ViewCentre();
        Pan(geometry_.ToImage(centre),
            centre - QPointF(*direction) * (PanStep * factor * DeviceScale()));
    }
    return true;
}

void ImageView::mousePressEvent(QMouseEvent* event) {
    Q_EMIT MousePressed(ToImage(event->position()), event->button(), event->modifiers());
    if (event->button() == Qt::LeftButton && !d_->IsDragging() && d_->IsToolActive()) {
        d_->PressTool(*event);
    } else {
        d_->Press(event->position() * d_->DeviceScale(), event->button());
    }
}

void ImageView::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton && d_->IsDragging()) {
        // The release went elsewhere, to a dialog for example.
        d_->EndDrag();
    }
    d_->MoveTool(*event);
    d_->MoveTo(event->position() * d_->DeviceScale());
}

void ImageView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        d_->EndToolPress();
    }
    const auto* pan = std::get_if<Private::PanDrag>(&d_->drag_);
    const Qt::MouseButton button = pan != nullptr ? pan->button : Qt::LeftButton;
    if (event->button() == button && d_->IsDragging()) {
        d_->EndDrag();
    }
}

void ImageView::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / WheelNotch;
    if (d_->interactions_ == Interactions(Interaction::None) || notches == 0) {
        event->ignore();
        return;
    }
    if (d_->PassToTool(*event, notches)) {
        event->accept();
        return;
    }
    const QPointF position = event->position() * d_->DeviceScale();
    d_->ZoomByUser(SteppedZoom(d_->geometry_.Zoom(), notches), position);
    d_->pointer_ = position;
    d_->UpdateCursor();
    event->accept();
}

void ImageView::keyPressEvent(QKeyEvent* event) {
    if (d_->PassToTool(*event)) {
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const Qt::KeyboardModifiers others = modifiers & ~Qt::ShiftModifier;
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool isTaken = others == Qt::NoModifier        ? d_->PressKey(event->key(), shift)
                         : others == Qt::ControlModifier ? d_->PressScalingKey(event->key(), shift)
                                                         : false;
    if (!isTaken) {
        QWidget::keyPressEvent(event);
    }
}

void ImageView::keyReleaseEvent(QKeyEvent* event) {
    if (!d_->PassToTool(*event)) {
        QWidget::keyReleaseEvent(event);
    }
}

bool ImageView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Gesture: {
            auto* gestures = static_cast<QGestureEvent*>(event);
            if (auto* pinch = static_cast<QPinchGesture*>(gestures->gesture(Qt::PinchGesture))) {
                const QPointF centre = mapFromGlobal(pinch->centerPoint());
                d_->ZoomByUser(d_->geometry_.Zoom() * pinch->scaleFactor(),
                               centre * d_->DeviceScale());
                return true;
            }
            break;
        }
        case QEvent::NativeGesture: {
            auto* gesture = static_cast<QNativeGestureEvent*>(event);
            if (gesture->gestureType() == Qt::ZoomNativeGesture) {
                d_->ZoomByUser(d_->geometry_.Zoom() * (1 + gesture->value()),
                               gesture->position() * d_->DeviceScale());
                return true;
            }
            break;
        }
        case QEvent::ShortcutOverride:
            // While something is dragged Escape belongs to the drag, not to a shortcut.
            if (d_->IsDragging() && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                event->accept();
                return true;
            }
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

}  // namespace kadrona::imaging::view
