#include "imaging/face/ChinFinder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace kadrona::imaging {

namespace {

constexpr double ChinPixelsPerUnit = 40;
const QRectF Area(-1.4, 0.3, 2.8, 2.7);

/// Deviation of chins from where they are expected, in distances of the pupils.
constexpr double ChinDeviation = 0.12;
constexpr double HighestChin = 1.35;
constexpr double LowestChin = 2.55;
/// The change is strongest where the chin begins to turn under; its lowest point stands below.
constexpr double Rounding = 0.06;
/// What the edges of chin and sides count against that.
constexpr double ChinWeight = 3;
constexpr double SideWeight = 2;

/// A jaw is the lower half of an ellipse with its middle at this height below the eyes.
constexpr double JawTop = 0.5;
/// Half of the widths that are tried: each side has its own, for a head may be turned.
constexpr std::array JawWidths{0.75, 0.82, 0.89, 0.96, 1.03, 1.10, 1.17, 1.24};
/// How far from the face's axis a turned head's chin may lie.
constexpr std::array ChinPlaces{-0.24, -0.12, 0.0, 0.12, 0.24};
/// The ellipse's angles from straight down: up to the first one it is the chin, on to the second
/// one the jaw's side.
constexpr double ChinAngle = 0.45;
constexpr double SideAngle = 1.2;

int RowOf(double y) {
    return static_cast<int>(std::lround((y - Area.top()) * ChinPixelsPerUnit));
}
double YOf(int row) {
    return Area.top() + (row + 0.5) / ChinPixelsPerUnit;
}
int ColumnOf(double x) {
    return static_cast<int>(std::lround((x - Area.left()) * ChinPixelsPerUnit));
}

/// How strongly the picture changes from inside to outside a jaw, CIE Lab units.
struct JawEdges {
    double y = 0;  ///< of the chin
    double chin = 0;
    double sides = 0;
};

/// Looks for the jaw whose chin has a given place.
class JawFitter {
 public:
    /// `lab` is Area's picture and must outlive the object.
    explicit JawFitter(const cv::Mat& lab) : lab_(lab) {}

    /// The best of all jaws with the chin at that height.
    JawEdges At(double y) const {
        constexpr double AxisWeight = 20;
        JawEdges best{y};
        double most = -1e9;
        for (const double x : ChinPlaces) {
            const JawEdges edges = At(QPointF(x, y));
            const double value = edges.chin + edges.sides - AxisWeight * x * x;
            if (value > most) {
                most = value;
                best = edges;
            }
        }
        return best;
    }

 private:
    JawEdges At(QPointF chin) const {
        double arc = 0;
        double left = 0;
        double right = 0;
        for (const double width : JawWidths) {
            arc = std::max(arc, Along(chin, width, -ChinAngle, ChinAngle));
            left = std::max(left, Along(chin, width, -SideAngle, -ChinAngle));
            right = std::max(right, Along(chin, width, ChinAngle, SideAngle));
        }
        return {chin.y(), arc, (left + right) / 2};
    }

    /// Mean over a part of the ellipse, between two angles.
    double Along(QPointF chin, double width, double from, double to) const {
        constexpr double Step = 0.09;
        const double height = chin.y() - JawTop;
        const int count = static_cast<int>((to - from) / Step) + 1;
        double sum = 0;
        for (int i = 0; i < count; ++i) {
            const double angle = from + i * Step;
            const double aside = std::sin(angle);
            const double down = std::cos(angle);
            const QPointF at(chin.x() * down + width * aside, JawTop + height * down);
            const QPointF normal(aside / width, down / height);
            sum += Across(at, normal / std::hypot(normal.x(), normal.y()),
                          std::abs(angle) <= ChinAngle);
        }
        return sum / count;
    }

    double Across(QPointF at, QPointF normal, bool isChin) const {
        constexpr double Reach = 3 / ChinPixelsPerUnit;
        constexpr double MostChange = 30;
        const cv::Vec3f off = ColourAt(at - Reach * normal) - ColourAt(at + Reach * normal);
        // The neck lies in the chin's shadow; a light collar is the exception.
        const double light = isChin && off[0] < 0 ? -0.4 * off[0] : std::abs(off[0]);
        return std::min(light + 0.7 * std::hypot(off[1], off[2]), MostChange);
    }

    const cv::Vec3f& ColourAt(QPointF point) const {
        return lab_.at<cv::Vec3f>(std::clamp(RowOf(point.y()), 0, lab_.rows - 1),
                                  std::clamp(ColumnOf(point.x()), 0, lab_.cols - 1));
    }

    const cv::Mat& lab_;
};

}  // namespace

FacePlace FindChin(const FacePhoto& photo, const FaceFrame& frame, double expected) {
    const cv::Mat lab = SmoothLab(photo.Sampled(frame, Area, ChinPixelsPerUnit), 1.5);
    const JawFitter fitter(lab);
    std::vector<JawEdges> jaws;
    // Where nothing stands out, the strongest edge is none.
    double strongestChin = 6;
    double strongestSides = 6;
    for (int row = RowOf(HighestChin); row <= RowOf(LowestChin); ++row) {
        jaws.push_back(fitter.At(YOf(row)));
        strongestChin = std::max(strongestChin, jaws.back().chin);
        strongestSides = std::max(strongestSides, jaws.back().sides);
    }
    double best = -1e9;
    FacePlace chin{{0, expected}, 0.3};
    for (const JawEdges& jaw : jaws) {
        const double off = (jaw.y - expected) / ChinDeviation;
        const double value = ChinWeight * jaw.chin / strongestChin +
                             SideWeight * jaw.sides / strongestSides - off * off / 2;
        if (value > best) {
            best = value;
            chin = {{0, jaw.y + Rounding}, std::clamp(jaw.chin / 20, 0.2, 0.9)};
        }
    }
    return chin;
}

}  // namespace kadrona::imaging
