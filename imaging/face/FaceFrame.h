#pragma once

#include <QPointF>
#include <QRectF>
#include <opencv2/core/mat.hpp>
#include <vector>

namespace kadrona::imaging {

/// The coordinates of a face: the origin in the middle between the pupils, the unit their distance,
/// x along the eye line to the right, y down to the chin.
struct FaceFrame {
    QPointF origin;   ///< photo pixels
    double unit = 1;  ///< photo pixels
    double tiltDegrees = 0;

    /// The frame in which the eyes lie at (-0.5, 0) and (0.5, 0).
    static FaceFrame OfEyes(QPointF left, QPointF right);

    QPointF ToPhoto(QPointF inFrame) const;
    QPointF FromPhoto(QPointF inPhoto) const;
};

/// A photo at the resolutions at which a face is looked for. Refers to the photo's pixels, which
/// must outlive it.
class FacePhoto {
 public:
    /// Rows of the reduction; a photo with fewer is not enlarged.
    static constexpr int ReducedRows = 600;

    /// `photo` is 8 bits a channel, four channels, blue first.
    explicit FacePhoto(cv::Mat photo);

    cv::Size Size() const { return levels_.front().picture.size(); }
    /// Blue, green, red.
    const cv::Mat& Reduced() const { return reduced_; }
    /// Photo pixels for each pixel of the reduction.
    double Reduction() const { return reduction_; }

    /// The part `area` of a frame (in the frame's units) brought upright, with `pixelsPerUnit`;
    /// blue, green, red. What lies outside the photo repeats its edge.
    cv::Mat Sampled(const FaceFrame& frame, const QRectF& area, double pixelsPerUnit) const;

 private:
    /// The photo halved again and again.
    struct Level {
        cv::Mat picture;
        double scale = 1;  ///< photo pixels for each pixel
    };

    std::vector<Level> levels_;
    cv::Mat reduced_;
    double reduction_ = 1;
};

/// A picture of FacePhoto::Sampled smoothed by a Gaussian of `sigma` pixels, in CIE Lab: three
/// floats a pixel, lightness 0 ... 100.
cv::Mat SmoothLab(cv::Mat picture, double sigma);

}  // namespace kadrona::imaging
