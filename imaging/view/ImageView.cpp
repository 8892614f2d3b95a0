#include "imaging/view/ImageView.h"

#include <QEvent>
#include <QFocusEvent>
#include <QPaintEvent>
#include <QPainter>

#include "imaging/view/ImageViewPrivate.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::view {

ImageView::ImageView(QWidget* parent) : QWidget(parent), d_(std::make_unique<Private>(*this)) {
    QPalette white = palette();
    white.setColor(QPalette::Base, Qt::white);
    setPalette(white);
    setBackgroundRole(QPalette::Base);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(u"Foto"_s);
    grabGesture(Qt::PinchGesture);
}

ImageView::~ImageView() = default;

LayeredImage& ImageView::Image() { return d_->image_; }

void ImageView::Fit() { d_->Fit(); }

void ImageView::Repaint() { update(); }

void ImageView::SuspendPainting() {
    if (++d_->suspensions_ == 1 && isVisible()) {
        d_->suspensions_ = 0;
        d_->lastFrame_ = grab();
        d_->suspensions_ = 1;
    }
}

void ImageView::ResumePainting() {
    if (--d_->suspensions_ == 0) {
        d_->lastFrame_ = QPixmap();
        update();
    }
}

void ImageView::SetInteraction(Interactions interaction) {
    d_->interactions_ = interaction;
    d_->UpdateCursor();
}

ImageView::Interactions ImageView::CurrentInteraction() const { return d_->interactions_; }

void ImageView::SetAutomaticFit(bool on) {
    d_->automaticFit_ = on;
    if (on) {
        d_->Fit();
    }
}

bool ImageView::AutomaticFit() const { return d_->automaticFit_; }

void ImageView::SetZoomPercent(double percent) {
    d_->ChangeZoom(percent / 100, d_->geometry_.ViewCentre());
}

double ImageView::ZoomPercent() const { return d_->geometry_.Zoom() * 100; }

QPointF ImageView::ToImage(QPointF widgetPosition) const {
    return d_->geometry_.ToImage(widgetPosition * d_->DeviceScale());
}

QPointF ImageView::ToWidget(QPointF imagePosition) const {
    return d_->geometry_.ToDevice(imagePosition) / d_->DeviceScale();
}

bool ImageView::IsInteracting() const { return d_->IsDragging(); }

void ImageView::SetSettleDelay(std::chrono::milliseconds delay) {
    d_->settleTimer_.setInterval(delay);
}

void ImageView::paintEvent(QPaintEvent* event) { d_->Paint(event->rect()); }

void ImageView::resizeEvent(QResizeEvent* /*event*/) { d_->UpdateViewSize(); }

void ImageView::hideEvent(QHideEvent* /*event*/) { d_->EndDrag(); }

void ImageView::focusInEvent(QFocusEvent* event) {
    // As everywhere, who clicks knows where the focus is.
    d_->showsFocus_ = event->reason() == Qt::TabFocusReason ||
                      event->reason() == Qt::BacktabFocusReason ||
                      event->reason() == Qt::ShortcutFocusReason;
    update();
}

void ImageView::focusOutEvent(QFocusEvent* /*event*/) {
    d_->showsFocus_ = false;
    update();
}

}  // namespace kadrona::imaging::view
