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

/// Below this a channel is mostly noise and says nothing about the light. White that is clipped
/// counts: it is to stay white.
constexpr int DarkestTone = 16;

/// A chromaticity is the logarithm of red over green and of blue over green. Histograms of them go
/// from 1/2 to 2 in both directions; one step is 3 per cent.
constexpr int StepsPerDirection = 23;
constexpr int HistogramLength = 2 * StepsPerDirection + 1;
const double LargestLogarithm = std::log(2.0);

/// Skin depends on its brightness, so points are counted apart by their green, in so many ranges.
constexpr int BrightnessRanges = 3;
constexpr std::array<int, BrightnessRanges - 1> RangeEnds = {120, 175};
/// How red skin is at the least, and how blue: bright skin is never as saturated as dark one.
struct SkinLimits {
    double leastRed;
    double leastBlue;
};
constexpr std::array<SkinLimits, BrightnessRanges> LimitsOfSkin = {
    SkinLimits{0.18, -0.36}, SkinLimits{0.12, -0.31}, SkinLimits{0.1, -0.26}};

/// The spread of what counts as grey, as a logarithm.
constexpr double GreySpread = 0.04;
/// The same of what a wall is painted in: few walls are stronger than cream or a light blue.
constexpr double PaintSpread = 0.18;
/// How sharply the range of skin ends.
constexpr double SkinSpread = 0.025;

/// How likely a light is, as the spread of its chromaticities.
constexpr double PriorSpread = 0.35;
/// Parts of the picture that count as grey, and as skin, whatever it shows: neither is always
/// there.
constexpr double GreyAnyway = 0.2;
constexpr double SkinAnyway = 0.01;
/// More skin than this says little more: it is rather a wall that a light makes look like skin.
constexpr double UsualSkin = 0.15;

/// Slighter casts, as a logarithm, may be a wall's paint.
constexpr double SlightestCast = 0.13;

/// Where so much of the picture is grey it settles the gains.
constexpr double GreyThatSettles = 0.1;
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

/// The chromaticity of a histogram's row or column.
double LogarithmOf(int bin) {
    return (bin - StepsPerDirection) * LargestLogarithm / StepsPerDirection;
}

using Histograms = std::array<cv::Mat, BrightnessRanges>;

/// The part of the points that has each chromaticity, red over green in the rows, blue over green
/// in the columns.
Histograms ChromaticitiesOf(const std::vector<QRgb>& points) {
    Histograms histograms;
    for (cv::Mat& histogram : histograms) {
        histogram = cv::Mat::zeros(HistogramLength, HistogramLength, CV_32F);
    }
    const auto bin = [](int channel, int green) {
        const double logarithm = std::log(double(channel) / green);
        return StepsPerDirection + qRound(logarithm / LargestLogarithm * StepsPerDirection);
    };
    for (const QRgb point : points) {
        const int red = bin(qRed(point), qGreen(point));
        const int blue = bin(qBlue(point), qGreen(point));
        if (red >= 0 && red < HistogramLength && blue >= 0 && blue < HistogramLength) {
            const auto range =
                std::ranges::upper_bound(RangeEnds, qGreen(point)) - RangeEnds.begin();
            histograms[static_cast<size_t>(range)].at<float>(red, blue) +=
                1.0F / static_cast<float>(points.size());
        }
    }
    return histograms;
}

double Falloff(double beyond, double spread) {
    const double distance = std::max(beyond, 0.0) / spread;
    return std::exp(-distance * distance / 2);
}

/// 0 ... 1, from faces of all complexions in neutral light: red is well above green and blue below
/// it, by a part of what red is above.
double LikenessToSkin(double red, double blue, const SkinLimits& limits) {
    constexpr double MostRed = 0.45;
    constexpr double LeastFall = 0.42;
    constexpr double MostFall = 1.25;
    return Falloff(limits.leastRed - red, SkinSpread) * Falloff(red - MostRed, SkinSpread) *
           Falloff(blue + LeastFall * red, SkinSpread) *
           Falloff(-MostFall * red - blue, SkinSpread) *
           Falloff(limits.leastBlue - blue, SkinSpread);
}

/// For each light, at its place in the histogram, the sum of what `likeness` makes of the points
/// once that light is corrected.
template <typename Likeness>
cv::Mat SumForEachLight(const cv::Mat& histogram, const Likeness& likeness) {
    constexpr int Side = 2 * HistogramLength - 1;
    cv::Mat kernel(Side, Side, CV_32F);
    for (int row = 0; row < Side; ++row) {
        for (int column = 0; column < Side; ++column) {
            const auto logarithm = [](int index) {
                return LogarithmOf(index - HistogramLength + 1 + StepsPerDirection);
            };
            kernel.at<float>(row, column) =
                static_cast<float>(likeness(logarithm(row), logarithm(column)));
        }
    }
    cv::Mat sums;
    cv::filter2D(histogram, sums, -1, kernel, {-1, -1}, 0, cv::BORDER_CONSTANT);
    return sums;
}

cv::Mat GreyForEachLight(const Histograms& histograms, double spread) {
    cv::Mat all = histograms.front().clone();
    std::for_each(histograms.begin() + 1, histograms.end(),
                  [&](const cv::Mat& next) { all += next; });
    return SumForEachLight(
        all, [spread](double red, double blue) { return Falloff(std::hypot(red, blue), spread); });
}

cv::Mat SkinForEachLight(const Histograms& histograms) {
    cv::Mat all = cv::Mat::zeros(HistogramLength, HistogramLength, CV_32F);
    for (size_t range = 0; range < histograms.size(); ++range) {
        all += SumForEachLight(histograms[range], [&](double red, double blue) {
            return LikenessToSkin(red, blue, LimitsOfSkin[range]);
        });
    }
    return all;
}

/// Red over green and blue over green, as logarithms.
struct Chromaticity {
    double red = 0;
    double blue = 0;
};

struct Light {
    double red = 0;   ///< what it makes of grey: the logarithm of red over green
    double blue = 0;  ///< the same of blue over green
    double grey = 0;  ///< the part of the picture that is grey once it is corrected

    double Cast() const { return std::hypot(red, blue); }
    Gains Correction() const { return {std::exp(-red), std::exp(-blue)}; }
};

/// The middle of a face's skin, its noise and its lips aside.
struct Skin {
    Chromaticity colour;
    double green = 0;  ///< 0 ... 255
};

/// None where too little of it can be seen.
std::optional<Skin> SkinIn(const QImage& image, const QRect& area) {
    constexpr int BrightestSkin = 250;  // what is brighter may be cut off
    constexpr size_t FewestPoints = 16;
    std::vector<double> red;
    std::vector<double> blue;
    std::vector<double> green;
    const QRect inside = area.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const auto [least, most] = std::minmax({qRed(row[x]), qGreen(row[x]), qBlue(row[x])});
            if (least >= DarkestTone && most <= BrightestSkin) {
                red.push_back(std::log(double(qRed(row[x])) / qGreen(row[x])));
                blue.push_back(std::log(double(qBlue(row[x])) / qGreen(row[x])));
                green.push_back(qGreen(row[x]));
            }
        }
    }
    if (red.size() < FewestPoints) {
        return std::nullopt;
    }
    const auto middle = [](std::vector<double>& values) {
        const auto half = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::ranges::nth_element(values, half);
        return *half;
    };
    return Skin{{middle(red), middle(blue)}, middle(green)};
}

/// How likely a face has that skin once the light is corrected, 0 ... 1: complexions spread about a
/// middle one, which is the less red and the less yellow the brighter the skin is.
double LikenessToFace(const Skin& skin, const Light& light) {
    constexpr Chromaticity Middle{0.245, -0.12};  // of a green of 150
    constexpr Chromaticity Slope{-0.2, 0.1};      // for 100 more of it
    constexpr Chromaticity Spread{0.068, 0.105};
    const double brighter = (skin.green - 150) / 100;
    const double red = skin.colour.red - light.red - Middle.red - Slope.red * brighter;
    const double blue = skin.colour.blue - light.blue - Middle.blue - Slope.blue * brighter;
    return std::exp(-std::pow(red / Spread.red, 2) / 2 - std::pow(blue / Spread.blue, 2) / 2);
}

/// How many times likelier than none a light must be.
struct Advantages {
    double ofWarmLight;
    double ofCoolLight;
};

/// `likelihood` takes a light and its row and column in the histogram; none where it is unsure.
template <typename Likelihood>
std::optional<Light> LikeliestLight(const cv::Mat& grey, const Advantages& needed,
                                    const Likelihood& likelihood) {
    Light best;
    double most = 0;
    double neutral = 0;
    for (int row = 0; row < HistogramLength; ++row) {
        for (int column = 0; column < HistogramLength; ++column) {
            const Light light{LogarithmOf(row), LogarithmOf(column), grey.at<float>(row, column)};
            const double likely = likelihood(light, row, column);
            if (row == StepsPerDirection && column == StepsPerDirection) {
                neutral = likely;
            }
            if (likely > most) {
                most = likely;
                best = light;
            }
        }
    }
    const double advantage = best.red < 0 ? needed.ofCoolLight : needed.ofWarmLight;
    const bool isSure = best.Cast() >= SlightestCast && most >= advantage * neutral;
    return isSure ? std::optional(best) : std::nullopt;
}

/// Lights that are less red than daylight need more by the colours alone: light blue is a usual
/// wall, and skin looks right before it in both lights. A face that is redder than usual is no
/// lamp.
constexpr Advantages AdvantagesByColours{4, 4.5};
constexpr Advantages AdvantagesByFace{19, 6.5};
/// The same as above where a face is known, whose skin says more: a wall need not be grey then.
constexpr double PaintAnyway = 0.06;
constexpr double FaceAnyway = 0.0036;
constexpr double PriorSpreadByFace = 0.23;
/// A light that the colours tell may leave a face so much less likely: dark skin is rare and true.
constexpr double LeastOfLikeness = 0.43;

std::optional<Light> LightByFace(const cv::Mat& grey, const Histograms& histograms,
                                 const Skin& face) {
    const cv::Mat paint = GreyForEachLight(histograms, PaintSpread);
    return LikeliestLight(grey, AdvantagesByFace, [&](const Light& light, int row, int column) {
        return (PaintAnyway + paint.at<float>(row, column)) *
               (FaceAnyway + LikenessToFace(face, light)) *
               Falloff(light.Cast(), PriorSpreadByFace);
    });
}

std::optional<Light> LightByColours(const cv::Mat& grey, const Histograms& histograms) {
    const cv::Mat skin = SkinForEachLight(histograms);
    return LikeliestLight(grey, AdvantagesByColours, [&](const Light& light, int row, int column) {
        const double part = skin.at<float>(row, column);
        return (GreyAnyway + light.grey) * (SkinAnyway + part / (part + UsualSkin)) *
               Falloff(light.Cast(), PriorSpread);
    });
}

/// The light that the picture was taken in; none where that is unsure. Where a face is known, what
/// the colours say must not make its skin unlikely.
std::optional<Light> LightOf(const std::vector<QRgb>& points, const std::optional<Skin>& face) {
    const Histograms histograms = ChromaticitiesOf(points);
    const cv::Mat grey = GreyForEachLight(histograms, GreySpread);
    std::optional<Light> light = face ? LightByFace(grey, histograms, *face) : std::nullopt;
    if (light) {
        return light;
    }
    light = LightByColours(grey, histograms);
    const bool isRefused =
        light && face &&
        LikenessToFace(*face, *light) < LeastOfLikeness * LikenessToFace(*face, {});
    return isRefused ? std::nullopt : light;
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

Gains EstimatedGains(const QImage& image, const QRect& skin) {
    constexpr int Rounds = 5;
    const std::vector<QRgb> points = UsefulPoints(image);
    const std::optional<Light> light = LightOf(points, SkinIn(image, skin));
    if (!light) {
        return {};
    }
    Gains gains = light->Correction();
    for (int round = 0; round < Rounds && light->grey >= GreyThatSettles; ++round) {
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
