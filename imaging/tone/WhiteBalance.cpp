#include "imaging/tone/WhiteBalance.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/StraightAlpha.h"
#include "imaging/tone/SceneLight.h"

namespace kadrona::imaging {

namespace {

/// What red and blue are multiplied with; green, which carries most of the brightness, stays. The
/// factors apply to the gamma-coded values: a factor on linear light is one there too, as far as
/// sRGB's curve is a power function.
struct Gains {
    double red = 1;
    double blue = 1;
};

/// So many points give the gains to a thousandth, whatever the picture's size.
constexpr int SamplesPerDirection = 512;

/// A point is nearly grey where its channels differ by at most this part of the largest.
constexpr double GreySaturation = 0.12;

std::vector<QRgb> UsefulPoints(const QImage& image) {
    const int stepX = std::max(1, image.width() / SamplesPerDirection);
    const int stepY = std::max(1, image.height() / SamplesPerDirection);
    std::vector<QRgb> points;
    for (int y = 0; y < image.height(); y += stepY) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); x += stepX) {
            if (std::min({qRed(row[x]), qGreen(row[x]), qBlue(row[x])}) >= DarkestTone) {
                points.push_back(row[x]);
            }
        }
    }
    return points;
}

/// The gains that make the average of those points neutral that `gains` make nearly grey.
Gains Refined(const std::vector<QRgb>& points, const Gains& gains) {
    double red = 0;
    double green = 0;
    double blue = 0;
    for (const QRgb point : points) {
        const auto [least, most] = std::minmax(
            {qRed(point) * gains.red, double(qGreen(point)), qBlue(point) * gains.blue});
        if (most - least <= GreySaturation * most) {
            red += qRed(point);
            green += qGreen(point);
            blue += qBlue(point);
        }
    }
    return green > 0 ? Gains{green / red, green / blue} : gains;
}

/// Takes so much of a light.
Gains Correction(const Chromaticity& light, double part) {
    return {std::exp(-part * light.red), std::exp(-part * light.blue)};
}

Gains EstimatedGains(const QImage& image, const QRect& skin) {
    constexpr int Rounds = 5;
    const std::vector<QRgb> points = UsefulPoints(image);
    const std::optional<SceneLight> light = SceneLightOf(points, FaceSkinIn(image, skin));
    if (!light) {
        return {};
    }
    if (!light->IsSettled()) {
        return Correction(light->colour, PartBySkin);
    }
    Gains gains = Correction(light->colour, 1);
    for (int round = 0; round < Rounds; ++round) {
        gains = Refined(points, gains);
    }
    return gains;
}

/// One table of 256 entries for each channel, in OpenCV's order blue, green, red, alpha. Empty
/// where it would change nothing.
cv::Mat ScaleTable(const Gains& gains) {
    cv::Mat table(1, 256, CV_8UC4);
    bool changes = false;
    for (int value = 0; value < 256; ++value) {
        const auto red = cv::saturate_cast<uchar>(value * gains.red);
        const auto blue = cv::saturate_cast<uchar>(value * gains.blue);
        const auto same = static_cast<uchar>(value);
        table.at<cv::Vec4b>(value) = {blue, same, red, same};
        changes = changes || red != same || blue != same;
    }
    return changes ? table : cv::Mat();
}

}  // namespace

Pixels WhiteBalanced(const Pixels& pixels, const QRect& skin) {
    if (pixels.IsEmpty()) {
        return pixels;
    }
    const QImage straight = StraightAlpha(pixels);
    const cv::Mat table = ScaleTable(EstimatedGains(straight, skin));
    if (table.empty()) {
        return pixels;
    }
    QImage balanced = NewImage(straight.size(), straight.format());
    cv::Mat target = MatView(balanced);
    cv::LUT(ConstMatView(straight), table, target);
    return {balanced, pixels.Columns(), pixels.Rows()};
}

}  // namespace kadrona::imaging
