#include "imaging/tone/SceneLight.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace kadrona::imaging {

namespace {

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
/// Most paints lie between those two, hardly greener or pinker than white.
constexpr double WarmthSpread = 0.13;
constexpr double TintSpread = 0.03;
constexpr double UsualTint = -0.01;
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

/// Where so much of what is brightest is neutral, the light is.
constexpr double PartOfWhite = 0.1;

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

/// The same for all points, however bright.
template <typename Likeness>
cv::Mat SumForEachLight(const Histograms& histograms, const Likeness& likeness) {
    cv::Mat all = histograms.front().clone();
    std::for_each(histograms.begin() + 1, histograms.end(),
                  [&](const cv::Mat& next) { all += next; });
    return SumForEachLight(all, likeness);
}

double LikenessToGrey(double red, double blue) {
    return Falloff(std::hypot(red, blue), GreySpread);
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

/// How strong a cast is.
double Strength(const Chromaticity& cast) {
    return std::hypot(cast.red, cast.blue);
}

/// How many times likelier than none a light must be.
struct Advantages {
    double ofWarmLight;
    double ofCoolLight;
};

/// `likelihood` takes a light and its row and column in the histogram; none where it is unsure.
template <typename Likelihood>
std::optional<SceneLight> LikeliestLight(const cv::Mat& grey, const Advantages& needed,
                                         const Likelihood& likelihood) {
    SceneLight best;
    double most = 0;
    double neutral = 0;
    for (int row = 0; row < HistogramLength; ++row) {
        for (int column = 0; column < HistogramLength; ++column) {
            const SceneLight light{{LogarithmOf(row), LogarithmOf(column)},
                                   grey.at<float>(row, column)};
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
    const double advantage = best.colour.red < 0 ? needed.ofCoolLight : needed.ofWarmLight;
    const bool isSure = Strength(best.colour) >= SlightestCast && most >= advantage * neutral;
    return isSure ? std::optional(best) : std::nullopt;
}

/// Lights that are less red than daylight need more by the colours alone: light blue is a usual
/// wall, and skin looks right before it in both lights. A face that is redder than usual is no
/// lamp.
constexpr Advantages AdvantagesByColours{5, 6};
constexpr Advantages AdvantagesByFace{50, 6};
/// The same as above where a face is known, whose skin says more: a wall need not be grey then.
constexpr double PaintAnyway = 0.035;
/// What a wall of usual paint, and in warm light a white or grey one, counts beside any paint: skin
/// alone leaves a white wall green or pink where the complexion is a rare one. In cool light white
/// counts no more, for light blue in daylight is as usual.
constexpr double UsualPaint = 0.15;
constexpr double WhiteInWarmLight = 3;
constexpr double FaceAnyway = 0.0047;
constexpr double PriorSpreadByFace = 0.255;
/// A light that the colours tell may leave a face so much less likely: dark skin is rare and true.
constexpr double LeastOfLikeness = 0.32;

/// A wall that is greener or pinker than this once the face has told the light shows that the
/// complexion is a rare one, where the wall is so large a part of the picture, and where the face
/// stays so likely without the tint.
constexpr double LeastTint = 0.04;
constexpr double LeastPartOfWall = 0.25;
constexpr double LeastOfLikenessWithoutTint = 0.3;

/// For each light, how much of the picture is painted as walls are once it is corrected.
cv::Mat WallForEachLight(const Histograms& histograms) {
    return SumForEachLight(histograms, [](double red, double blue) {
        const double warmth = (red - blue) / 2;
        const double tint = (red + blue) / 2 - UsualTint;
        return Falloff(std::hypot(red, blue), PaintSpread) +
               UsualPaint * Falloff(std::hypot(warmth / WarmthSpread, tint / TintSpread), 1);
    });
}

std::optional<SceneLight> LightByFace(const cv::Mat& grey, const Histograms& histograms,
                                      const FaceSkin& face) {
    const cv::Mat wall = WallForEachLight(histograms);
    return LikeliestLight(
        grey, AdvantagesByFace, [&](const SceneLight& light, int row, int column) {
            const double white = light.colour.red > 0 ? WhiteInWarmLight : 0;
            return (PaintAnyway + wall.at<float>(row, column) + white * light.grey) *
                   (FaceAnyway + LikenessToFace(face, light.colour)) *
                   Falloff(Strength(light.colour), PriorSpreadByFace);
        });
}

/// The most frequent colour of what is not dark, in most portraits the wall's.
struct Wall {
    Chromaticity colour;
    double part = 0;  ///< of the picture, 0 ... 1
};

Wall WallOf(const Histograms& histograms) {
    const cv::Mat parts = SumForEachLight(histograms[1] + histograms[2], LikenessToGrey);
    Wall wall;
    cv::Point place;
    cv::minMaxLoc(parts, nullptr, &wall.part, nullptr, &place);
    wall.colour = {LogarithmOf(place.y), LogarithmOf(place.x)};
    return wall;
}

/// Moves a light that the face tells along green and pink, which few walls are, until its
/// correction leaves a large wall neither.
SceneLight WithoutTintOfWall(const SceneLight& light, const Wall& wall, const FaceSkin& face) {
    if (light.IsSettled() || wall.part < LeastPartOfWall) {
        return light;
    }
    const double tint = ((wall.colour.red - PartBySkin * light.colour.red) +
                         (wall.colour.blue - PartBySkin * light.colour.blue)) /
                        2;
    const double shift = tint / PartBySkin;
    const Chromaticity moved{light.colour.red + shift, light.colour.blue + shift};
    const bool isLikely = LikenessToFace(face, moved) >=
                          LeastOfLikenessWithoutTint * LikenessToFace(face, light.colour);
    return std::abs(tint) > LeastTint && isLikely ? SceneLight{moved, light.grey} : light;
}

std::optional<SceneLight> LightByColours(const cv::Mat& grey, const Histograms& histograms) {
    const cv::Mat skin = SkinForEachLight(histograms);
    return LikeliestLight(
        grey, AdvantagesByColours, [&](const SceneLight& light, int row, int column) {
            const double part = skin.at<float>(row, column);
            return (GreyAnyway + light.grey) * (SkinAnyway + part / (part + UsualSkin)) *
                   Falloff(Strength(light.colour), PriorSpread);
        });
}

/// The part of what is brightest that is neutral already. A light would have coloured it, and it is
/// to stay white.
double NeutralPartOfBrightest(const std::vector<QRgb>& points) {
    constexpr double BrightestPart = 0.05;
    constexpr double Neutral = 0.05;  // how far channels differ, as a part of the largest
    std::array<size_t, 256> all{};
    std::array<size_t, 256> neutral{};
    for (const QRgb point : points) {
        const auto [least, most] = std::minmax({qRed(point), qGreen(point), qBlue(point)});
        ++all[static_cast<size_t>(most)];
        neutral[static_cast<size_t>(most)] += most - least <= Neutral * most ? 1 : 0;
    }
    size_t brightest = 0;
    size_t white = 0;
    for (size_t tone = all.size();
         tone-- > 0 && double(brightest) < BrightestPart * double(points.size());) {
        brightest += all[tone];
        white += neutral[tone];
    }
    return brightest > 0 ? double(white) / double(brightest) : 0;
}

/// Where a face is known, what the colours say must not make its skin unlikely.
std::optional<SceneLight> LightByBoth(const cv::Mat& grey, const Histograms& histograms,
                                      const std::optional<FaceSkin>& face) {
    std::optional<SceneLight> light = face ? LightByFace(grey, histograms, *face) : std::nullopt;
    if (light) {
        return WithoutTintOfWall(*light, WallOf(histograms), *face);
    }
    light = LightByColours(grey, histograms);
    const bool isRefused =
        light && face &&
        LikenessToFace(*face, light->colour) < LeastOfLikeness * LikenessToFace(*face, {});
    return isRefused ? std::nullopt : light;
}

}  // namespace

std::optional<SceneLight> SceneLightOf(const std::vector<QRgb>& points,
                                       const std::optional<FaceSkin>& face) {
    if (NeutralPartOfBrightest(points) >= PartOfWhite) {
        return std::nullopt;
    }
    const Histograms histograms = ChromaticitiesOf(points);
    const cv::Mat grey = SumForEachLight(histograms, LikenessToGrey);
    return LightByBoth(grey, histograms, face);
}

}  // namespace kadrona::imaging
