#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>
#include <vector>

#include "imaging/MatView.h"
#include "imaging/NewImage.h"
#include "imaging/Processing.h"

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

/// Beyond these a channel is clipped or mostly noise and says nothing about the light.
constexpr int DarkestMiddleTone = 16;
constexpr int BrightestMiddleTone = 250;

/// A point is nearly grey where its channels differ by at most this part of the largest.
constexpr double GreySaturation = 0.25;

/// With fewer of the points nearly grey there is nothing to refine the gains on.
constexpr double LeastGreyPart = 0.01;

/// No light that a portrait is taken in needs more; beyond it the colours are the picture's own.
constexpr double LargestGain = 2;

std::vector<QRgb> MiddleTones(const QImage& image) {
    const int stepX = std::max(1, image.width() / SamplesPerDirection);
    const int stepY = std::max(1, image.height() / SamplesPerDirection);
    std::vector<QRgb> tones;
    for (int y = 0; y < image.height(); y += stepY) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); x += stepX) {
            const auto [least, most] = std::minmax({qRed(row[x]), qGreen(row[x]), qBlue(row[x])});
            if (least >= DarkestMiddleTone && most <= BrightestMiddleTone) {
                tones.push_back(row[x]);
            }
        }
    }
    return tones;
}

/// The gains that make the average of the points neutral, of which `gains` leave a saturation of at
/// most `saturation`; `gains` as they are where there are too few of these.
Gains Refined(const std::vector<QRgb>& points, const Gains& gains, double saturation) {
    double red = 0;
    double green = 0;
    double blue = 0;
    qsizetype count = 0;
    for (const QRgb point : points) {
        const auto [least, most] = std::minmax(
            {qRed(point) * gains.red, double(qGreen(point)), qBlue(point) * gains.blue});
        if (most - least <= saturation * most) {
            red += qRed(point);
            green += qGreen(point);
            blue += qBlue(point);
            ++count;
        }
    }
    if (count == 0 || count < LeastGreyPart * points.size()) {
        return gains;
    }
    return {std::clamp(green / red, 1 / LargestGain, LargestGain),
            std::clamp(green / blue, 1 / LargestGain, LargestGain)};
}

Gains EstimatedGains(const QImage& image) {
    constexpr int MostRounds = 20;
    constexpr double Still = 1e-4;
    const std::vector<QRgb> points = MiddleTones(image);
    Gains gains = Refined(points, {}, 1);
    for (int round = 0; round < MostRounds; ++round) {
        const Gains refined = Refined(points, gains, GreySaturation);
        const double change =
            std::abs(refined.red - gains.red) + std::abs(refined.blue - gains.blue);
        gains = refined;
        if (change < Still) {
            break;
        }
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

Pixels WhiteBalanced(const Pixels& pixels) {
    if (pixels.IsEmpty()) {
        return pixels;
    }
    // Premultiplied values could be scaled above their alpha.
    const QImage straight =
        pixels.Tile().hasAlphaChannel()
            ? RequireAllocated(pixels.Tile().convertToFormat(QImage::Format_ARGB32))
            : pixels.Tile();
    const cv::Mat table = ScaleTable(EstimatedGains(straight));
    if (table.empty()) {
        return pixels;
    }
    QImage balanced = NewImage(straight.size(), straight.format());
    cv::Mat target = MatView(balanced);
    cv::LUT(ConstMatView(straight), table, target);
    return {balanced, pixels.Columns(), pixels.Rows()};
}

}  // namespace kadrona::imaging
