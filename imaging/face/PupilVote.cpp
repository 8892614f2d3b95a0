#include "imaging/face/PupilVote.h"

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace kadrona::imaging {

namespace {

/// How much a pupil is preferred in the middle of its window: a classifier's eye is nearly centred.
constexpr double MiddlePreference = 1.6;

/// A strong change of brightness: where, and which way it grows (of length 1).
struct Gradient {
    cv::Point2f at;
    cv::Point2f direction;
};

std::vector<Gradient> StrongGradients(const cv::Mat& grey) {
    cv::Mat smooth;
    cv::GaussianBlur(grey, smooth, {5, 5}, 0);
    cv::Mat dx;
    cv::Mat dy;
    cv::Sobel(smooth, dx, CV_32F, 1, 0);
    cv::Sobel(smooth, dy, CV_32F, 0, 1);
    cv::Mat magnitude;
    cv::magnitude(dx, dy, magnitude);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(magnitude, mean, deviation);
    const double threshold = mean[0] + 0.3 * deviation[0];
    std::vector<Gradient> gradients;
    for (int y = 0; y < grey.rows; ++y) {
        for (int x = 0; x < grey.cols; ++x) {
            const float length = magnitude.at<float>(y, x);
            if (length > threshold) {
                gradients.push_back({cv::Point2f(static_cast<float>(x), static_cast<float>(y)),
                                     cv::Point2f(dx.at<float>(y, x), dy.at<float>(y, x)) / length});
            }
        }
    }
    return gradients;
}

/// How many gradients point straight away from a point, as they do from the middle of a dark disc.
float SupportFor(cv::Point2f middle, const std::vector<Gradient>& gradients) {
    float sum = 0;
    for (const Gradient& gradient : gradients) {
        const cv::Point2f away = gradient.at - middle;
        const float along = away.dot(gradient.direction);
        if (along > 0) {
            sum += along * along / (away.dot(away) + 1e-3F);
        }
    }
    return sum;
}

}  // namespace

cv::Point2d PupilIn(const cv::Mat& grey) {
    const std::vector<Gradient> gradients = StrongGradients(grey);
    cv::Mat dark;
    cv::GaussianBlur(grey, dark, {0, 0}, 3);
    const cv::Point2f middle(static_cast<float>(grey.cols) / 2, static_cast<float>(grey.rows) / 2);
    double best = -1;
    cv::Point2d pupil(middle);
    for (int y = 2; y < grey.rows - 2; ++y) {
        for (int x = 2; x < grey.cols - 2; ++x) {
            const cv::Point2f at(static_cast<float>(x), static_cast<float>(y));
            const double across = (at.x - middle.x) / middle.x;
            const double down = (at.y - middle.y) / middle.y;
            const double value = SupportFor(at, gradients) * (255.0 - dark.at<uchar>(y, x)) *
                                 std::exp(-MiddlePreference * (across * across + down * down));
            if (value > best) {
                best = value;
                pupil = cv::Point2d(x, y);
            }
        }
    }
    return pupil;
}

}  // namespace kadrona::imaging
