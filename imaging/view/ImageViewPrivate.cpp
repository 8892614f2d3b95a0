#include "imaging/view/ImageViewPrivate.h"

#include <QPainter>
#include <cmath>

#include "platform/Error.h"

namespace kadrona::imaging::view {

namespace {

using namespace std::chrono_literals;

constexpr auto SettleDelay = 120ms;
// In logical pixels: room for the shadow.
constexpr int FitMargin = 12;

QRect ToDevicePixels(const QRect& widget, double scale) {
    return QRectF(widget.x() * scale, widget.y() * scale, widget.width() * scale,
                  widget.height() * scale)
        .toAlignedRect();
}

QRect ToLogicalPixels(const QRect& device, double scale) {
    return ToDevicePixels(device, 1 / scale);
}

}  // namespace

ImageView::Private::Private(ImageView& view, LayeredImage& image)
    : view_(view), image_(image), cursor_(view) {
    settleTimer_.setSingleShot(true);
    settleTimer_.setInterval(SettleDelay);
    QObject::connect(&settleTimer_, &QTimer::timeout, &view, [this] { Settle(); });
    prepareTimer_.setSingleShot(true);
    QObject::connect(&prepareTimer_, &QTimer::timeout, &view, [this] { Prepare(); });
    QObject::connect(&image_, &LayeredImage::PhotoChanged, &view, [this] { TakePhoto(); });
    QObject::connect(&image_, &LayeredImage::PhotoEdited, &view,
                     [this](const QRect& area) { TakeEdit(area); });
    QObject::connect(&image_, &LayeredImage::LayersChanged, &view,
                     [this] { RepaintChangedLayers(); });
}

void ImageView::Private::ChangeGeometry(const std::function<void()>& change) {
    const double zoom = geometry_.Zoom();
    const QRect place = geometry_.ImageRectangle();
    change();
    view_.update();
    UpdateOverlay();
    if (geometry_.Zoom() != zoom) {
        Q_EMIT view_.ZoomChanged(geometry_.Zoom() * 100);
    }
    if (geometry_.ImageRectangle() != place) {
        Q_EMIT view_.PartChanged();
    }
}

void ImageView::Private::UpdateViewSize() {
    const double scale = DeviceScale();
    const QSize size(static_cast<int>(std::lround(view_.width() * scale)),
                     static_cast<int>(std::lround(view_.height() * scale)));
    if (size == geometry_.ViewSize()) {
        return;
    }
    ChangeGeometry([&] {
        geometry_.SetView(size, static_cast<int>(std::lround(FitMargin * scale)));
        if (automaticFit_ || followingFit_ != FollowingFit::None) {
            geometry_.Fit();
            StartMoving();
        }
    });
}

void ImageView::Private::Fit(FollowingFit following) {
    UpdateViewSize();
    ChangeGeometry([this] { geometry_.Fit(); });
    followingFit_ = following;
}

void ImageView::Private::ChangeZoom(double zoom, QPointF fixed) {
    followingFit_ = FollowingFit::None;
    ChangeGeometry([&] { geometry_.SetZoom(zoom, fixed); });
}

void ImageView::Private::ZoomByUser(double zoom, QPointF fixed) {
    if (!image_.IsEmpty()) {
        automaticFit_ = false;
        StartMoving();
        ChangeZoom(zoom, fixed);
    }
}

void ImageView::Private::Pan(QPointF imagePoint, QPointF to) {
    StartMoving();
    const QRect place = geometry_.ImageRectangle();
    ChangeGeometry([&] { geometry_.Place(imagePoint, to); });
    if (geometry_.ImageRectangle() != place) {  // not where all of it shows already
        followingFit_ = FollowingFit::None;
    }
}

void ImageView::Private::ShowPart(double zoom, QPointF middle) {
    followingFit_ = FollowingFit::None;
    StartMoving();
    ChangeGeometry([&] {
        geometry_.SetZoom(zoom, geometry_.ViewCentre());
        geometry_.Place(middle, geometry_.ViewCentre());
    });
}

// A brush stroke would otherwise draw the whole view anew at each of its dabs.
void ImageView::Private::TakeEdit(const QRect& area) {
    if (image_.Photo().Size() != geometry_.ImageSize()) {
        return;
    }
    painter_.TakePhotoEdit(image_.Photo(), area);
    editedPixels_ = image_.Photo().Key();
    constexpr int FilterReach = 8;  // device pixels
    view_.update(ToLogicalPixels(
        geometry_.ToDevice(area).adjusted(-FilterReach, -FilterReach, FilterReach, FilterReach),
        DeviceScale()));
}

void ImageView::Private::UpdatePhoto() {
    view_.update(ToLogicalPixels(geometry_.ImageRectangle(), DeviceScale()));
}

void ImageView::Private::TakePhoto() {
    if (!image_.IsEmpty() && image_.Photo().Key() == editedPixels_) {
        return;
    }
    editedPixels_ = 0;
    painter_.ForgetPhoto();
    const QSize size = image_.Photo().Size();
    if (size != geometry_.ImageSize()) {
        EndDrag();
        const bool isFirst = geometry_.ImageSize().isEmpty();
        ChangeGeometry([&] {
            geometry_.SetImageSize(size);
            if (automaticFit_ || isFirst) {
                geometry_.Fit();
            } else if (followingFit_ == FollowingFit::UntilMoved) {
                followingFit_ = FollowingFit::None;  // it may be larger than the view now
            }
        });
    }
    view_.update();
}

void ImageView::Private::StartMoving() {
    quality_ = Quality::Fast;
    settleTimer_.start();
}

void ImageView::Private::Settle() {
    quality_ = Quality::Smooth;
    view_.update();
}

void ImageView::Private::Prepare() {
    try {
        painter_.Prepare(image_) ? view_.update() : prepareTimer_.start();
    } catch (const platform::Error&) {
        // Memory is short: what shows already stays.
    }
}

void ImageView::Private::RepaintChangedLayers() {
    const double scale = DeviceScale();
    std::vector<LayerAppearance> layers = AppearancesOf(image_, geometry_, scale);
    const size_t count = std::max(layers.size(), paintedLayers_.size());
    layers.resize(count);
    paintedLayers_.resize(count);
    for (size_t i = 0; i < count; ++i) {
        if (layers[i] != paintedLayers_[i]) {
            view_.update(ToLogicalPixels(layers[i].area | paintedLayers_[i].area, scale));
        }
    }
    paintedLayers_ = std::move(layers);
    if (const auto* moved = std::get_if<MovedLayer>(&drag_);
        moved != nullptr && moved->layer >= image_.LayerCount()) {
        EndDrag();
    }
}

void ImageView::Private::Paint(const QRect& dirty) {
    // Nothing tells of a move to a screen of another scale.
    UpdateViewSize();
    QPainter painter(&view_);
    if (suspensions_ > 0) {
        painter.fillRect(dirty, view_.palette().base());
        painter.drawPixmap(0, 0, lastFrame_);
        return;
    }
    if (followingFit_ == FollowingFit::UntilPainted) {
        followingFit_ = FollowingFit::None;
    }
    painter.save();
    // One unit of the painter is one device pixel.
    painter.scale(1 / DeviceScale(), 1 / DeviceScale());
    PaintImage(painter, ToDevicePixels(dirty, DeviceScale()));
    painter.restore();
    PaintOverlay(painter);
    if (showsFocus_ && view_.hasFocus()) {
        painter.setPen(view_.palette().color(QPalette::Highlight));
        painter.drawRect(view_.rect().adjusted(0, 0, -1, -1));
    }
}

void ImageView::Private::PaintImage(QPainter& painter, const QRect& dirty) {
    const QPalette& palette = view_.palette();
    try {
        painter_.Paint(painter, image_,
                       {geometry_, dirty, quality_, palette.color(QPalette::Base),
                        palette.color(QPalette::Highlight), DeviceScale(), filter_.get()});
    } catch (const platform::Error&) {
        // Memory is short, and nothing may be thrown through the event loop: the user sees the
        // background, and whatever needs the memory says so.
        painter.fillRect(dirty, palette.base());
    }
    paintedLayers_ = AppearancesOf(image_, geometry_, DeviceScale());
    if (quality_ == Quality::Smooth && painter_.IsProvisional()) {
        prepareTimer_.start();
    }
}

}  // namespace kadrona::imaging::view
