#include "imaging/view/ImageView.h"

#include <QEvent>
#include <QFocusEvent>
#include <QPaintEvent>
#include <QPainter>

#include "imaging/view/ImageViewPrivate.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::view {

ImageView::ImageView(LayeredImage& image, QWidget* parent)
    : QWidget(parent), d_(std::make_unique<Private>(*this, image)) {
    setBackgroundRole(QPalette::Base);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(u"Foto"_s);
    grabGesture(Qt::PinchGesture);
}

ImageView::~ImageView() = default;

LayeredImage& ImageView::Image() {
    return d_->image_;
}

void ImageView::Fit() {
    d_->Fit(Private::FollowingFit::UntilPainted);
}

void ImageView::FitUntilMoved() {
    d_->Fit(Private::FollowingFit::UntilMoved);
}

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

ImageView::Interactions ImageView::CurrentInteraction() const {
    return d_->interactions_;
}

void ImageView::SetAutomaticFit(bool on) {
    d_->automaticFit_ = on;
    if (on) {
        Fit();
    }
}

bool ImageView::AutomaticFit() const {
    return d_->automaticFit_;
}

void ImageView::SetZoomPercent(double percent) {
    d_->ChangeZoom(percent / 100, d_->geometry_.ViewCentre());
}

double ImageView::ZoomPercent() const {
    return d_->geometry_.Zoom() * 100;
}

void ImageView::ShowPart(double percent, QPointF middle) {
    d_->ShowPart(percent / 100, middle);
}

QPointF ImageView::Middle() const {
    return d_->geometry_.ToImage(d_->geometry_.ViewCentre());
}

void ImageView::SetPreviewFilter(PixelFilterPointer filter) {
    if (filter != d_->filter_) {
        d_->filter_ = std::move(filter);
        d_->UpdatePhoto();
    }
}

const PixelFilterPointer& ImageView::PreviewFilter() const {
    return d_->filter_;
}

void ImageView::SetTool(ViewTool* tool) {
    d_->SetTool(tool);
}

ViewTool* ImageView::Tool() const {
    return d_->tool_;
}

void ImageView::RefreshTool() {
    d_->UpdateOverlay();
}

QPointF ImageView::ToImage(QPointF widgetPosition) const {
    return d_->geometry_.ToImage(widgetPosition * d_->DeviceScale());
}

QPointF ImageView::ToWidget(QPointF imagePosition) const {
    return d_->geometry_.ToDevice(imagePosition) / d_->DeviceScale();
}

bool ImageView::IsInteracting() const {
    return d_->IsDragging();
}

void ImageView::SetSettleDelay(std::chrono::milliseconds delay) {
    d_->settleTimer_.setInterval(delay);
}

void ImageView::paintEvent(QPaintEvent* event) {
    d_->Paint(event->rect());
}

void ImageView::resizeEvent(QResizeEvent* /*event*/) {
    d_->UpdateViewSize();
}

void ImageView::hideEvent(QHideEvent* /*event*/) {
    d_->EndToolPress();
    d_->EndDrag();
}

void ImageView::focusInEvent(QFocusEvent* event) {
    // Who clicks knows where the focus is; a window that comes back shows what it showed before.
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
        reason == Qt::ShortcutFocusReason) {
        d_->showsFocus_ = true;
    } else if (reason == Qt::MouseFocusReason) {
        d_->showsFocus_ = false;
    }
    update();
}

void ImageView::focusOutEvent(QFocusEvent* /*event*/) {
    update();
}

}  // namespace kadrona::imaging::view
