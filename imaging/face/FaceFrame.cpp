#include "imaging/face/FaceFrame.h"

#include <QtMath>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "imaging/face/Face.h"

namespace kadrona::imaging {

namespace {

/// The reduction is never longer than this many rows' worth of pixels, whatever the photo's shape.
constexpr int LongestReducedSide = 1800;

QPointF Turned(QPointF point, double degrees) {
    const double angle = qDegreesToRadians(degrees);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * point.x() - s * point.y(), s * point.x() + c * point.y()};
}

cv::Mat WithoutAlpha(const cv::Mat& picture) {
    cv::Mat colours;
    cv::cvtColor(picture, colours, cv::COLOR_BGRA2BGR);
    return colours;
}

cv::Mat Shrunk(const cv::Mat& picture, double factor) {
    const cv::Size size(std::max(1, static_cast<int>(std::lround(picture.cols * factor))),
                        std::max(1, static_cast<int>(std::lround(picture.rows * factor))));
    cv::Mat shrunk;
    cv::resize(picture, shrunk, size, 0, 0, cv::INTER_AREA);
    return shrunk;
}

/// Each pixel the mean of four; an odd last row or column is left out.
cv::Mat Halved(const cv::Mat& picture) {
    const cv::Size half(picture.cols / 2, picture.rows / 2);
    cv::Mat halved;
    if (half.empty()) {
        return picture;
    }
    cv::resize(picture(cv::Rect(0, 0, half.width * 2, half.height * 2)), halved, half, 0, 0,
               cv::INTER_AREA);
    return halved;
}

}  // namespace

FaceFrame FaceFrame::OfEyes(QPointF left, QPointF right) {
    const QPointF line = right - left;
    return {(left + right) / 2, std::hypot(line.x(), line.y()), TiltDegrees(left, right)};
}

QPointF FaceFrame::ToPhoto(QPointF inFrame) const {
    return origin + Turned(inFrame, tiltDegrees) * unit;
}

QPointF FaceFrame::FromPhoto(QPointF inPhoto) const {
    return Turned(inPhoto - origin, -tiltDegrees) / unit;
}

FacePhoto::FacePhoto(cv::Mat photo) {
    const int longest = std::max(photo.cols, photo.rows);
    reduction_ = std::max({1.0, static_cast<double>(photo.rows) / ReducedRows,
                           static_cast<double>(longest) / LongestReducedSide});
    levels_.push_back({std::move(photo), 1});
    while (levels_.back().scale * 2 <= reduction_) {
        levels_.push_back({Halved(levels_.back().picture), levels_.back().scale * 2});
    }
    const Level& last = levels_.back();
    reduced_ = WithoutAlpha(reduction_ > last.scale ? Shrunk(last.picture, last.scale / reduction_)
                                                    : last.picture);
}

cv::Mat FacePhoto::Sampled(const FaceFrame& frame, const QRectF& area, double pixelsPerUnit) const {
    // The coarsest level with about as many pixels as are asked for, so that bilinear sampling
    // neither skips pixels nor enlarges what the photo has finer.
    constexpr double GoodEnough = 0.8;
    const auto fine = std::find_if(levels_.rbegin(), levels_.rend(), [&](const Level& level) {
        return frame.unit / level.scale >= GoodEnough * pixelsPerUnit;
    });
    const Level& source = fine == levels_.rend() ? levels_.front() : *fine;
    const auto inSource = [&](QPointF point) {
        const QPointF at = (frame.ToPhoto(point) + QPointF(0.5, 0.5)) / source.scale;
        return cv::Point2f(static_cast<float>(at.x() - 0.5), static_cast<float>(at.y() - 0.5));
    };
    const cv::Size size(static_cast<int>(std::lround(area.width() * pixelsPerUnit)),
                        static_cast<int>(std::lround(area.height() * pixelsPerUnit)));
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    const std::array from{inSource(area.topLeft()), inSource(area.topRight()),
                          inSource(area.bottomLeft())};
    const std::array to{cv::Point2f(0, 0), cv::Point2f(width, 0), cv::Point2f(0, height)};
    cv::Mat sampled;
    cv::warpAffine(source.picture, sampled, cv::getAffineTransform(from.data(), to.data()), size,
                   cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    return WithoutAlpha(sampled);
}

cv::Mat SmoothLab(cv::Mat picture, double sigma) {
    cv::GaussianBlur(picture, picture, {0, 0}, sigma);
    cv::Mat lab;
    picture.convertTo(lab, CV_32FC3, 1 / 255.0);
    cv::cvtColor(lab, lab, cv::COLOR_BGR2Lab);
    return lab;
}

}  // namespace kadrona::imaging
