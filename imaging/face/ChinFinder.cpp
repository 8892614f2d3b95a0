#include "imaging/face/ChinFinder.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace kadrona::imaging {

namespace {

constexpr double PixelsPerUnit = 40;
const QRectF Area(-0.7, 0.6, 1.4, 2.4);

/// Lines between the lips lie here below the eyes, and a chin that much below them: means and
/// deviations of the faces that this was fitted to, in distances of the pupils.
constexpr double MouthMean = 1.12;
constexpr double MouthDeviation = 0.12;
constexpr double ChinMean = 1.87;
constexpr double ChinByMouth = 1.0;
constexpr double ChinDeviation = 0.15;
constexpr double HighestChin = 1.35;
constexpr double LowestChin = 2.55;

int RowOf(double y) {
    return static_cast<int>(std::lround((y - Area.top()) * PixelsPerUnit));
}
double YOf(int row) {
    return Area.top() + (row + 0.5) / PixelsPerUnit;
}
int ColumnOf(double x) {
    return static_cast<int>(std::lround((x - Area.left()) * PixelsPerUnit));
}

/// The line between the lips: dark between two lighter ones, and level.
double MouthBelowEyes(const cv::Mat& lightness) {
    constexpr int Reach = 5;
    double best = -1e9;
    double mouth = MouthMean;
    for (int row = RowOf(0.8); row <= RowOf(1.55); ++row) {
        double valley = 0;
        const int from = ColumnOf(-0.3);
        const int to = ColumnOf(0.3);
        for (int column = from; column <= to; ++column) {
            const float above = lightness.at<float>(row - Reach, column);
            const float below = lightness.at<float>(row + Reach, column);
            const float here = lightness.at<float>(row, column);
            valley += std::clamp((above + below) / 2 - here, -5.0F, 25.0F);
        }
        valley /= to - from + 1;
        const double off = (YOf(row) - MouthMean) / MouthDeviation;
        const double value = valley / 4 - off * off / 2;
        if (value > best) {
            best = value;
            mouth = YOf(row);
        }
    }
    return mouth;
}

/// How strongly the picture changes from above to below each arc y = row - curvature * x^2.
double ChangeAcross(const cv::Mat& lab, int row, double curvature) {
    constexpr double HalfWidth = 0.42;
    constexpr int Reach = 3;
    double sum = 0;
    int count = 0;
    for (int column = ColumnOf(-HalfWidth); column <= ColumnOf(HalfWidth); ++column) {
        const double x = column / PixelsPerUnit + Area.left();
        const int y = row - static_cast<int>(std::lround(curvature * x * x * PixelsPerUnit));
        if (y - Reach < 0 || y + Reach >= lab.rows) {
            continue;
        }
        const cv::Vec3f difference =
            lab.at<cv::Vec3f>(y - Reach, column) - lab.at<cv::Vec3f>(y + Reach, column);
        // The neck lies in the chin's shadow; a light collar is the exception.
        const float light = difference[0] > 0 ? difference[0] : -0.4F * difference[0];
        const float colour = std::hypot(difference[1], difference[2]);
        sum += std::min(light + 0.7F * colour, 18.0F);
        ++count;
    }
    return count > 0 ? sum / count : 0;
}

}  // namespace

FacePlace FindChin(const FacePhoto& photo, const FaceFrame& frame) {
    const cv::Mat lab = SmoothLab(photo.Sampled(frame, Area, PixelsPerUnit), 1.5);
    cv::Mat lightness;
    cv::extractChannel(lab, lightness, 0);
    const double mouth = MouthBelowEyes(lightness);
    const double expected = ChinMean + ChinByMouth * (mouth - MouthMean);
    std::vector<std::pair<int, double>> changes;
    double strongest = 6;
    for (int row = RowOf(std::max(HighestChin, mouth + 0.35)); row <= RowOf(LowestChin); ++row) {
        double change = 0;
        for (const double curvature : {0.3, 0.55, 0.8}) {
            change = std::max(change, ChangeAcross(lab, row, curvature));
        }
        changes.emplace_back(row, change);
        strongest = std::max(strongest, change);
    }
    constexpr double ChangeWeight = 2.2;
    double best = -1e9;
    FacePlace chin{{0, expected}, 0.3};
    for (const auto& [row, change] : changes) {
        const double off = (YOf(row) - expected) / ChinDeviation;
        const double value = ChangeWeight * change / strongest - off * off / 2;
        if (value > best) {
            best = value;
            chin = {{0, YOf(row)}, std::clamp(change / 20, 0.2, 0.9)};
        }
    }
    return chin;
}

}  // namespace kadrona::imaging
