#include "imaging/face/CrownFinder.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace kadrona::imaging {

namespace {

constexpr double CrownPixelsPerUnit = 22;
constexpr double HalfWidth = 2.2;
constexpr double Highest = -3.4;
constexpr double Lowest = -0.6;
/// Part of the rows, around the axis, in which the crown is looked for.
constexpr double HalfCrown = 0.5;
/// How a crown bends down beside its top.
constexpr double Curvature = 0.35;
/// Crowns above the eyes, in distances of the pupils.
constexpr double MeanCrown = -2.05;
constexpr double CrownDeviation = 0.3;
constexpr double LowestCrown = -1.5;
constexpr double PartingWeight = 4;
/// An arc parts best where hair is dense; the hair's top stands this much above it.
constexpr double LooseHair = 0.06;

/// A few colours in CIE Lab with how far each spreads.
class Colours {
 public:
    /// Clusters of the samples, as many as `count` or fewer.
    Colours(const std::vector<cv::Vec3f>& samples, int count) {
        const cv::Mat points(static_cast<int>(samples.size()), 3, CV_32F,
                             const_cast<cv::Vec3f*>(samples.data()));
        cv::Mat labels;
        cv::theRNG().state = 1;  // the clusters start from random points: the same ones each time
        cv::kmeans(points, count, labels, {cv::TermCriteria::COUNT, 6, 0}, 1,
                   cv::KMEANS_PP_CENTERS);
        KeepLargeClusters(samples, labels, static_cast<size_t>(count));
    }

    void Add(const cv::Vec3d& mean, const cv::Vec3d& deviation) {
        means_.emplace_back(mean);
        deviations_.emplace_back(deviation);
    }

    /// From the nearest of them, in its deviations.
    double DistanceTo(const cv::Vec3f& colour) const {
        double nearest = 1e9;
        for (size_t i = 0; i < means_.size(); ++i) {
            const cv::Vec3f off = colour - means_[i];
            double distance = 0;
            for (int channel = 0; channel < 3; ++channel) {
                const double part = off[channel] / deviations_[i][channel];
                distance += part * part;
            }
            nearest = std::min(nearest, distance);
        }
        return std::sqrt(nearest);
    }

 private:
    /// Means and deviations of the clusters that have more than a few pixels.
    void KeepLargeClusters(const std::vector<cv::Vec3f>& samples, const cv::Mat& labels,
                           size_t count) {
        std::vector<cv::Vec3d> sums(count);
        std::vector<cv::Vec3d> squares(count);
        std::vector<int> counts(count);
        for (size_t i = 0; i < samples.size(); ++i) {
            const auto cluster = static_cast<size_t>(labels.at<int>(static_cast<int>(i)));
            const cv::Vec3d value = samples[i];
            sums[cluster] += value;
            squares[cluster] += value.mul(value);
            ++counts[cluster];
        }
        const cv::Vec3d floors(2.5, 1.5, 1.5);
        for (size_t i = 0; i < count; ++i) {
            if (counts[i] < static_cast<int>(samples.size()) / 50) {
                continue;
            }
            const cv::Vec3d mean = sums[i] / counts[i];
            cv::Vec3d deviation;
            for (int channel = 0; channel < 3; ++channel) {
                const double variance =
                    squares[i][channel] / counts[i] - mean[channel] * mean[channel];
                deviation[channel] = std::max(floors[channel], std::sqrt(std::max(0.0, variance)));
            }
            Add(mean, deviation);
        }
    }

    std::vector<cv::Vec3f> means_;
    std::vector<cv::Vec3d> deviations_;
};

int PixelsOf(double length) {
    return static_cast<int>(length * CrownPixelsPerUnit);
}

/// A wall lit from one side: between the upper corners its colours pass from one to the other.
void AddGradient(Colours& background, const cv::Mat& lab, int side) {
    constexpr int Steps = 6;
    const int height = std::max(1, lab.rows / 3);
    const cv::Scalar left = cv::mean(lab(cv::Rect(0, 0, side, height)));
    const cv::Scalar right = cv::mean(lab(cv::Rect(lab.cols - side, 0, side, height)));
    for (int step = 1; step < Steps; ++step) {
        const cv::Scalar mixed = left + (right - left) * (static_cast<double>(step) / Steps);
        const double between = cv::norm(right - left) / Steps;
        background.Add({mixed[0], mixed[1], mixed[2]}, {std::max(3.0, between), 2.0, 2.0});
    }
}

/// The colours beside the head, and of all that lies well above the expected crown.
Colours BackgroundOf(const cv::Mat& lab, double expectedBelowTop) {
    constexpr double WellAbove = 0.6;
    constexpr int Clusters = 4;
    std::vector<cv::Vec3f> samples;
    const int side = PixelsOf(HalfWidth - 1.6);
    const int corners = static_cast<int>(0.6 * lab.rows);
    const int above = PixelsOf(expectedBelowTop - WellAbove);
    for (int row = 0; row < lab.rows; ++row) {
        for (int column = 0; column < lab.cols; ++column) {
            if (row < above || (row < corners && (column < side || column >= lab.cols - side))) {
                samples.push_back(lab.at<cv::Vec3f>(row, column));
            }
        }
    }
    Colours background(samples, Clusters);
    AddGradient(background, lab, side);
    return background;
}

/// The colours of the hair, or of the forehead where it is bald, just below the expected crown.
Colours HairOf(const cv::Mat& lab, double expectedBelowTop) {
    constexpr double From = 0.15;
    constexpr double To = 0.6;
    constexpr int Clusters = 3;
    std::vector<cv::Vec3f> samples;
    const int half = PixelsOf(HalfCrown);
    const int last = std::min(PixelsOf(expectedBelowTop + To), lab.rows);
    for (int row = std::min(PixelsOf(expectedBelowTop + From), last - 2); row < last; ++row) {
        for (int column = lab.cols / 2 - half; column <= lab.cols / 2 + half; ++column) {
            samples.push_back(lab.at<cv::Vec3f>(row, column));
        }
    }
    return {samples, Clusters};
}

/// 0 like the background ... 1 unlike it and like the hair. Half of it goes by the background
/// alone: hair has more colours than were seen of it.
double Unlikeness(const cv::Vec3f& colour, const Colours& background, const Colours& hair) {
    constexpr double Alike = 2;
    constexpr double Unlike = 4.5;
    constexpr double Farthest = 7;  // farther off tells no more
    const double off = background.DistanceTo(colour);
    const double nearer = std::min(off, Farthest) - std::min(hair.DistanceTo(colour), Farthest);
    return (std::clamp((off - Alike) / (Unlike - Alike), 0.0, 1.0) +
            std::clamp(0.5 + nearer / 2 / (Unlike - Alike), 0.0, 1.0)) /
           2;
}

/// `expectedBelowTop` is the expected crown below the first row.
cv::Mat UnlikenessOf(const cv::Mat& lab, double expectedBelowTop) {
    const Colours background = BackgroundOf(lab, expectedBelowTop);
    const Colours hair = HairOf(lab, expectedBelowTop);
    cv::Mat unlikeness(lab.size(), CV_32F);
    for (int row = 0; row < lab.rows; ++row) {
        for (int column = 0; column < lab.cols; ++column) {
            unlikeness.at<float>(row, column) =
                static_cast<float>(Unlikeness(lab.at<cv::Vec3f>(row, column), background, hair));
        }
    }
    return unlikeness;
}

/// What a row's arc shows.
struct ArcEvidence {
    double unlikeness = 0;  ///< mean over the arc
    double change = 0;      ///< mean difference of the colours above and below, CIE Lab units
};

ArcEvidence EvidenceAt(const cv::Mat& lab, const cv::Mat& unlikeness, int row) {
    constexpr int Reach = 2;
    constexpr double MostChange = 20;
    const int middle = lab.cols / 2;
    const int half = static_cast<int>(HalfCrown * CrownPixelsPerUnit);
    ArcEvidence evidence;
    for (int column = middle - half; column <= middle + half; ++column) {
        const double x = (column - middle) / CrownPixelsPerUnit;
        const int bend = static_cast<int>(std::lround(Curvature * x * x * CrownPixelsPerUnit));
        const int y = std::min(row + bend, lab.rows - 1);
        evidence.unlikeness += unlikeness.at<float>(y, column);
        const cv::Vec3f off = lab.at<cv::Vec3f>(std::max(0, y - Reach), column) -
                              lab.at<cv::Vec3f>(std::min(lab.rows - 1, y + Reach), column);
        evidence.change += std::min(cv::norm(off), MostChange);
    }
    evidence.unlikeness /= 2 * half + 1;
    evidence.change /= 2 * half + 1;
    return evidence;
}

/// How well a border above `row` parts background from head: 1 perfectly. `atEdge` is how likely
/// nothing at all lies above it.
double Parting(const std::vector<ArcEvidence>& rows, size_t row, size_t lowest, double atEdge) {
    double above = 0;
    double below = 0;
    for (size_t i = 0; i < row; ++i) {
        above += rows[i].unlikeness;
    }
    for (size_t i = row; i < lowest; ++i) {
        below += rows[i].unlikeness;
    }
    const double likeAbove = row > 0 ? 1 - above / static_cast<double>(row) : atEdge;
    return below / static_cast<double>(std::max<size_t>(1, lowest - row)) + likeAbove - 1;
}

}  // namespace

FacePlace FindCrown(const FacePhoto& photo, const FaceFrame& frame, double expected) {
    const double photoTop = frame.FromPhoto({frame.origin.x(), 0}).y();
    const double top = std::max(Highest, photoTop);
    if (top > LowestCrown - 0.2) {
        return {{0, std::min(top, MeanCrown)}, 0.1};
    }
    const QRectF area(-HalfWidth, top, 2 * HalfWidth, Lowest - top);
    const cv::Mat lab = SmoothLab(photo.Sampled(frame, area, CrownPixelsPerUnit), 0.8);
    const cv::Mat unlikeness = UnlikenessOf(lab, std::max(expected, top) - top);
    const auto lowest = static_cast<size_t>((LowestCrown - top) * CrownPixelsPerUnit);
    std::vector<ArcEvidence> rows;
    double strongest = 6;
    for (size_t row = 0; row <= lowest; ++row) {
        rows.push_back(EvidenceAt(lab, unlikeness, static_cast<int>(row)));
        strongest = std::max(strongest, rows.back().change);
    }
    // Where the photo ends above the head, the crown may lie at its very edge.
    const double atEdge = top > Highest ? 0.3 : 0;
    std::vector<double> partings;
    for (size_t row = 0; row <= lowest; ++row) {
        partings.push_back(Parting(rows, row, lowest, atEdge));
    }
    // Edges count for more where the background tells little.
    const double clearest = std::clamp(*std::ranges::max_element(partings), 0.0, 1.0);
    const double changeWeight = 1.5 + 1.5 * (1 - clearest);
    double best = -1e9;
    FacePlace crown;
    for (size_t row = 0; row <= lowest; ++row) {
        const double y = top + (static_cast<double>(row) + 0.5) / CrownPixelsPerUnit;
        const double off = (y - MeanCrown) / CrownDeviation;
        const double value = PartingWeight * partings[row] +
                             changeWeight * rows[row].change / strongest - off * off / 2;
        if (value > best) {
            best = value;
            crown = {{0, std::max(top, y - LooseHair)}, std::clamp(partings[row], 0.2, 0.95)};
        }
    }
    return crown;
}

}  // namespace kadrona::imaging
