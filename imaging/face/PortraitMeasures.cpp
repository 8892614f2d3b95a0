#include "imaging/face/PortraitMeasures.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "imaging/face/EnoughMemory.h"
#include "imaging/face/FaceFrame.h"
#include "imaging/pixels/MatView.h"

namespace kadrona::imaging {

namespace {

/// Regions of a face, in units of FaceFrame.
const QRectF Forehead(-0.35, -0.85, 0.7, 0.3);
const QRectF LeftCheek(-0.62, 0.4, 0.34, 0.4);
const QRectF RightCheek(0.28, 0.4, 0.34, 0.4);
const QRectF Eyes(-0.85, -0.25, 1.7, 0.5);

/// A region's pixels: blue, green, red and their CIE Lab.
struct Region {
    cv::Mat colours;
    cv::Mat lab;
};

class Measurer {
 public:
    Measurer(const Pixels& photo, const Face& face)
        : image_(photo.ToImage()),
          photo_(ConstMatView(image_)),
          frame_(FaceFrame::OfEyes(face.leftEye.position, face.rightEye.position)) {}

    PortraitMeasures Measure() const {
        PortraitMeasures measures;
        MeasureSkin(measures);
        MeasureEyes(measures);
        return measures;
    }

 private:
    bool IsInside(const QRectF& area) const {
        const QRectF whole(0, 0, image_.width(), image_.height());
        return whole.contains(frame_.ToPhoto(area.topLeft())) &&
               whole.contains(frame_.ToPhoto(area.topRight())) &&
               whole.contains(frame_.ToPhoto(area.bottomLeft())) &&
               whole.contains(frame_.ToPhoto(area.bottomRight()));
    }

    std::optional<Region> Sample(const QRectF& area, double pixelsPerUnit, double sigma) const {
        if (!IsInside(area)) {
            return std::nullopt;
        }
        const cv::Mat colours = photo_.Sampled(frame_, area, pixelsPerUnit);
        return Region{colours, SmoothLab(colours.clone(), sigma)};
    }

    void MeasureSkin(PortraitMeasures& measures) const {
        constexpr double PixelsPerUnit = 40;
        const auto forehead = Sample(Forehead, PixelsPerUnit, 1);
        const auto left = Sample(LeftCheek, PixelsPerUnit, 1);
        const auto right = Sample(RightCheek, PixelsPerUnit, 1);
        if (!left || !right) {
            return;
        }
        const double leftLight = cv::mean(left->lab)[0];
        const double rightLight = cv::mean(right->lab)[0];
        measures.lightDifference = std::abs(leftLight - rightLight);
        measures.skinLightness = (leftLight + rightLight) / 2;
        measures.skinClipped = (Clipped(left->colours) + Clipped(right->colours)) / 2;
        if (forehead) {
            measures.skinClipped = std::max(*measures.skinClipped, Clipped(forehead->colours));
        }
    }

    /// Percent of the pixels that are burnt out (all channels) or black.
    static double Clipped(const cv::Mat& colours) {
        constexpr int Burnt = 250;
        constexpr int Black = 6;
        int clipped = 0;
        for (int row = 0; row < colours.rows; ++row) {
            for (int column = 0; column < colours.cols; ++column) {
                const auto& pixel = colours.at<cv::Vec3b>(row, column);
                const auto [least, most] = std::minmax({pixel[0], pixel[1], pixel[2]});
                clipped += int{least >= Burnt || most <= Black};
            }
        }
        return 100.0 * clipped / static_cast<double>(std::max<size_t>(1, colours.total()));
    }

    void MeasureEyes(PortraitMeasures& measures) const {
        constexpr double PixelsPerUnit = 100;
        const auto eyes = Sample(Eyes, PixelsPerUnit, 0.7);
        if (!eyes) {
            return;
        }
        cv::Mat lightness;
        cv::extractChannel(eyes->lab, lightness, 0);
        cv::Mat detail;
        cv::Laplacian(lightness, detail, CV_32F);
        cv::Scalar mean;
        cv::Scalar deviation;
        cv::meanStdDev(detail, mean, deviation);
        measures.sharpness = deviation[0];
        measures.redEye = std::max(RedPart({-0.5, 0}), RedPart({0.5, 0}));
    }

    /// Percent of a pupil's disc whose red is far above green and blue.
    double RedPart(QPointF pupil) const {
        constexpr double Radius = 0.06;
        const auto disc =
            Sample({pupil.x() - Radius, pupil.y() - Radius, 2 * Radius, 2 * Radius}, 100, 0.7);
        if (!disc) {
            return 0;
        }
        int red = 0;
        for (int row = 0; row < disc->colours.rows; ++row) {
            for (int column = 0; column < disc->colours.cols; ++column) {
                const auto& pixel = disc->colours.at<cv::Vec3b>(row, column);
                red += int{pixel[2] > 90 && pixel[2] > 2 * std::max(pixel[0], pixel[1])};
            }
        }
        return 100.0 * red / static_cast<double>(std::max<size_t>(1, disc->colours.total()));
    }

    QImage image_;
    FacePhoto photo_;
    FaceFrame frame_;
};

}  // namespace

PortraitMeasures MeasurePortrait(const Pixels& photo, const Face& face) {
    constexpr double SmallestDistance = 4;
    if (photo.IsEmpty() || face.EyeDistance() < SmallestDistance) {
        return {};
    }
    return WithEnoughMemory([&] { return Measurer(photo, face).Measure(); });
}

}  // namespace kadrona::imaging
