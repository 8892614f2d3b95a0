#include "imaging/tone/WhiteBalance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <vector>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/StraightAlpha.h"

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

/// The histogram of chromaticities goes from a gain of 1/2 to one of 2 in both directions: no light
/// that a portrait is taken in needs more. One step is 3 per cent.
constexpr int StepsPerDirection = 23;
constexpr int HistogramLength = 2 * StepsPerDirection + 1;
const double LargestLogGain = std::log(2.0);

/// How likely a light is, as the spread of its logarithmic gains: cameras have corrected most of
/// it.
constexpr double PriorSpread = 0.25;

/// Where fewer points than this (weighted by how likely their light is) agree on a light, the
/// colours are the picture's own.
constexpr double LeastEvidence = 0.01;

/// A point is nearly grey where its channels differ by at most this part of the largest.
constexpr double GreySaturation = 0.12;

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

double LogGain(int bin) {
    return (bin - StepsPerDirection) * LargestLogGain / StepsPerDirection;
}

/// The part of the points that each pair of gains makes neutral: rows are gains of red, columns of
/// blue, smoothed over the width of nearly grey.
cv::Mat LightHistogram(const std::vector<QRgb>& points) {
    cv::Mat histogram = cv::Mat::zeros(HistogramLength, HistogramLength, CV_32F);
    const auto bin = [](int green, int channel) {
        const double gain = std::log(double(green) / channel);
        return StepsPerDirection + qRound(gain / LargestLogGain * StepsPerDirection);
    };
    for (const QRgb point : points) {
        const int red = bin(qGreen(point), qRed(point));
        const int blue = bin(qGreen(point), qBlue(point));
        if (red >= 0 && red < HistogramLength && blue >= 0 && blue < HistogramLength) {
            histogram.at<float>(red, blue) += 1.0F / static_cast<float>(points.size());
        }
    }
    constexpr int Width = 5;
    cv::boxFilter(histogram, histogram, -1, {Width, Width}, {-1, -1}, false, cv::BORDER_CONSTANT);
    return histogram;
}

/// The light that most points agree on, weighted by how likely it is; none where too few do.
std::optional<Gains> MostLikelyGains(const std::vector<QRgb>& points) {
    cv::Mat evidence = LightHistogram(points);
    for (int red = 0; red < HistogramLength; ++red) {
        for (int blue = 0; blue < HistogramLength; ++blue) {
            const double distance = std::hypot(LogGain(red), LogGain(blue)) / PriorSpread;
            evidence.at<float>(red, blue) *= static_cast<float>(std::exp(-distance * distance / 2));
        }
    }
    double most = 0;
    cv::Point peak;
    cv::minMaxLoc(evidence, nullptr, &most, nullptr, &peak);
    if (most < LeastEvidence) {
        return std::nullopt;
    }
    return Gains{std::exp(LogGain(peak.y)), std::exp(LogGain(peak.x))};
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

Gains EstimatedGains(const QImage& image) {
    constexpr int Rounds = 5;
    const std::vector<QRgb> points = MiddleTones(image);
    const std::optional<Gains> likely = MostLikelyGains(points);
    if (!likely) {
        return {};
    }
    Gains gains = *likely;
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

Pixels WhiteBalanced(const Pixels& pixels) {
    if (pixels.IsEmpty()) {
        return pixels;
    }
    const QImage straight = StraightAlpha(pixels);
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
