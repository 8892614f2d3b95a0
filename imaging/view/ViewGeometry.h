#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

namespace kadrona::imaging::view {

/// Where an image lies in a view: its size, its zoom and its origin.
///
/// Device coordinates are the screen's own pixels, counted from the view's top left corner; image
/// coordinates are photo pixels. The image's top left corner always lies on a whole device pixel,
/// so that panning shifts a drawing without changing it.
///
/// An axis along which the image is smaller than the view is centred. Along the others the image
/// covers the view but for an overscroll of at most a quarter of the view.
class ViewGeometry {
 public:
    /// Device pixels per image pixel.
    static constexpr double MaximumZoom = 32.0;

    /// `fitMargin` is what Fit leaves free on every side. Keeps the zoom and the image point in the
    /// middle of the view.
    void SetView(QSize devicePixels, int fitMargin);
    /// Keeps the zoom; the middle of the new image takes the place of the old one's.
    void SetImageSize(QSize imagePixels);

    QSize ViewSize() const { return viewSize_; }
    QSize ImageSize() const { return imageSize_; }
    double Zoom() const { return zoom_; }
    double FitZoom() const;
    /// An eighth of the fit, or 100 % where that is less.
    double MinimumZoom() const;

    void Fit();
    /// Zooms within the limits; the image point under `fixed` stays there as far as the view's
    /// bounds let it.
    void SetZoom(double zoom, QPointF fixed);
    QPointF ViewCentre() const { return {viewSize_.width() / 2.0, viewSize_.height() / 2.0}; }

    /// Pans so that `imagePoint` comes to lie at `device`, as far as the view's bounds let it.
    void Place(QPointF imagePoint, QPointF device);

    QPoint Origin() const;
    /// The whole image's size in device pixels, at least 1 by 1.
    QSize ScaledSize() const;
    /// The whole image in device pixels.
    QRect ImageRectangle() const { return {Origin(), ScaledSize()}; }

    QPointF ToImage(QPointF device) const { return (device - Origin()) / zoom_; }
    QPointF ToDevice(QPointF image) const { return image * zoom_ + Origin(); }
    /// The size depends on the rectangle's size alone, so that it does not flicker by a pixel while
    /// the rectangle moves.
    QRect ToDevice(const QRect& image) const;

 private:
    void KeepInView();

    QSize viewSize_;
    QSize imageSize_;
    int fitMargin_ = 0;
    double zoom_ = 1.0;
    /// Not rounded, so that many small zoom steps about one point do not drift.
    QPointF origin_;
};

/// The zoom after `notches` of a mouse wheel (fractions allowed, negative zooms out): three notches
/// double it. A step across 100 % stops there.
double SteppedZoom(double zoom, double notches);

}  // namespace kadrona::imaging::view
