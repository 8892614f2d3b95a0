#include "imaging/view/ViewGeometry.h"

#include <algorithm>
#include <cmath>

namespace kadrona::imaging::view {

namespace {

constexpr double OverscrollOfView = 0.25;
constexpr double NotchesPerDoubling = 3.0;

int ScaledLength(int length, double zoom) {
    return std::max(1, static_cast<int>(std::lround(length * zoom)));
}

// The overscroll grows from nothing, so that zooming through "as large as the view" does not jump.
double KeptInView(double origin, int scaledLength, int viewLength) {
    const double excess = scaledLength - viewLength;
    if (excess <= 0) {
        return -excess / 2;
    }
    const double overscroll = std::min(excess, viewLength * OverscrollOfView);
    return std::clamp(origin, -excess - overscroll, overscroll);
}

}  // namespace

void ViewGeometry::SetView(QSize devicePixels, int fitMargin) {
    const QPointF middle = (ViewCentre() - origin_) / zoom_;
    viewSize_ = devicePixels;
    fitMargin_ = fitMargin;
    Place(middle, ViewCentre());
}

void ViewGeometry::SetImageSize(QSize imagePixels) {
    const QPointF oldMiddle =
        origin_ + QPointF(imageSize_.width(), imageSize_.height()) / 2 * zoom_;
    imageSize_ = imagePixels;
    Place(QPointF(imageSize_.width(), imageSize_.height()) / 2, oldMiddle);
}

double ViewGeometry::FitZoom() const {
    if (imageSize_.isEmpty()) {
        return 1.0;
    }
    const double width = std::max(1, viewSize_.width() - 2 * fitMargin_);
    const double height = std::max(1, viewSize_.height() - 2 * fitMargin_);
    return std::min({width / imageSize_.width(), height / imageSize_.height(), MaximumZoom});
}

double ViewGeometry::MinimumZoom() const { return std::min(FitZoom() / 8, 1.0); }

void ViewGeometry::Fit() {
    zoom_ = FitZoom();
    KeepInView();
}

void ViewGeometry::SetZoom(double zoom, QPointF fixed) {
    const QPointF imagePoint = (fixed - origin_) / zoom_;
    zoom_ = std::clamp(zoom, MinimumZoom(), MaximumZoom);
    Place(imagePoint, fixed);
}

void ViewGeometry::Place(QPointF imagePoint, QPointF device) {
    origin_ = device - imagePoint * zoom_;
    KeepInView();
}

QPoint ViewGeometry::Origin() const { return origin_.toPoint(); }

QSize ViewGeometry::ScaledSize() const {
    return {ScaledLength(imageSize_.width(), zoom_), ScaledLength(imageSize_.height(), zoom_)};
}

QRect ViewGeometry::ToDevice(const QRect& image) const {
    return {ToDevice(QPointF(image.topLeft())).toPoint(),
            QSize(ScaledLength(image.width(), zoom_), ScaledLength(image.height(), zoom_))};
}

void ViewGeometry::KeepInView() {
    const QSize scaled = ScaledSize();
    origin_ = {KeptInView(origin_.x(), scaled.width(), viewSize_.width()),
               KeptInView(origin_.y(), scaled.height(), viewSize_.height())};
}

double SteppedZoom(double zoom, double notches) {
    const double stepped = zoom * std::exp2(notches / NotchesPerDoubling);
    // The tolerance keeps a zoom that is 100 % but for rounding from stopping there once more.
    constexpr double Tolerance = 1e-6;
    const bool crosses = (zoom < 1 - Tolerance && stepped > 1 - Tolerance) ||
                         (zoom > 1 + Tolerance && stepped < 1 + Tolerance);
    return crosses ? 1.0 : stepped;
}

}  // namespace kadrona::imaging::view
