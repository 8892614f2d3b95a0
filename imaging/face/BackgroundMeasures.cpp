#include "imaging/face/BackgroundMeasures.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "imaging/face/EnoughMemory.h"
#include "imaging/face/FaceFrame.h"
#include "imaging/pixels/MatView.h"

namespace kadrona::imaging {

namespace {

/// Where the background is measured, photo pixels; the parts have the same height.
std::vector<QRectF> BackgroundParts(const QRectF& picture, const Face& face) {
    // In distances of the pupils, from the middle of the head.
    constexpr double BesideHair = 1.6;
    constexpr double BesideHead = 1.2;
    constexpr double Wanted = 0.3;  // width of a strip, for which it may come near the head
    constexpr double Narrowest = 0.05;
    constexpr double BelowEyes = 0.2;  // above the shoulders
    constexpr double Lowest = 0.5;
    const double unit = face.EyeDistance();
    const QPointF eyes = face.EyeMiddle();
    const double bottom = std::min(eyes.y() + BelowEyes * unit, picture.bottom());
    if (bottom - picture.top() < Lowest * unit) {
        return {};
    }
    const double middle = (picture.top() + bottom) / 2;
    std::vector<QRectF> parts;
    const auto add = [&](double left, double right) {
        if (right - left >= std::max(Narrowest * unit, 1.0)) {
            parts.emplace_back(QPointF(left, picture.top()), QPointF(right, middle));
            parts.emplace_back(QPointF(left, middle), QPointF(right, bottom));
        }
    };
    // A tilted head leans to one side.
    const double leftmost = std::min(eyes.x(), face.crown.position.x());
    const double rightmost = std::max(eyes.x(), face.crown.position.x());
    add(picture.left(),
        std::min(leftmost - BesideHead * unit,
                 std::max(leftmost - BesideHair * unit, picture.left() + Wanted * unit)));
    add(std::max(rightmost + BesideHead * unit,
                 std::min(rightmost + BesideHair * unit, picture.right() - Wanted * unit)),
        picture.right());
    return parts;
}

/// The picture that is judged: the cut, or the photo as far as it is near the head.
QRectF PictureAround(const Face& face, const QRect& cut, const QRect& photo) {
    constexpr double Near = 2.1;
    constexpr double AboveCrown = 0.2;
    const QRectF whole(photo);
    if (!cut.isEmpty()) {
        return whole & QRectF(cut);
    }
    const double unit = face.EyeDistance();
    const QPointF eyes = face.EyeMiddle();
    return whole &
           QRectF(QPointF(eyes.x() - Near * unit, face.crown.position.y() - AboveCrown * unit),
                  QPointF(eyes.x() + Near * unit, eyes.y() + unit));
}

/// A part in CIE Lab, reduced to a few pixels, each the mean of some of the photo's.
cv::Mat LabOf(const cv::Mat& photo, const QRectF& part) {
    constexpr int Rows = 24;
    constexpr int Columns = 12;
    constexpr int SamplesPerSide = 4;
    const QRect inside = part.toAlignedRect() & QRect(0, 0, photo.cols, photo.rows);
    const cv::Mat area = photo(cv::Rect(inside.x(), inside.y(), inside.width(), inside.height()));
    cv::Mat samples;
    cv::resize(area, samples, cv::Size(Columns, Rows) * SamplesPerSide, 0, 0, cv::INTER_LINEAR);
    cv::Mat colours;
    cv::resize(samples, colours, cv::Size(Columns, Rows), 0, 0, cv::INTER_AREA);
    cv::cvtColor(colours, colours, cv::COLOR_BGRA2BGR);
    return SmoothLab(colours, 1);
}

BackgroundMeasures MeasuresOf(const cv::Mat& photo, const std::vector<QRectF>& parts) {
    cv::Mat all;
    double lightest = 0;
    double darkest = 100;
    for (const QRectF& part : parts) {
        const cv::Mat lab = LabOf(photo, part);
        const double lightness = cv::mean(lab)[0];
        lightest = std::max(lightest, lightness);
        darkest = std::min(darkest, lightness);
        all.push_back(lab.reshape(3, static_cast<int>(lab.total())));
    }
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(all, mean, deviation);
    return {.lightness = mean[0],
            .spread = cv::norm(deviation),
            .chroma = std::hypot(mean[1], mean[2]),
            .shadow = lightest - darkest};
}

}  // namespace

BackgroundMeasures MeasureBackground(const Pixels& photo, const Face& face, const QRect& cut) {
    constexpr double SmallestDistance = 4;
    if (photo.IsEmpty() || face.EyeDistance() < SmallestDistance) {
        return {};
    }
    const std::vector<QRectF> parts =
        BackgroundParts(PictureAround(face, cut, QRect({0, 0}, photo.Size())), face);
    if (parts.empty()) {
        return {};
    }
    const QImage image = photo.ToImage();
    return WithEnoughMemory([&] { return MeasuresOf(ConstMatView(image), parts); });
}

}  // namespace kadrona::imaging
