#include "imaging/face/EyeFinder.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>

namespace kadrona::imaging {

namespace {

/// Resolution at which eyes are looked for, pixels for one distance of the pupils.
constexpr double EyePixelsPerUnit = 100;
/// Where a classifier may see an eye around the guess, in frame units.
const QRectF LeftArea(-1.15, -0.6, 1.15, 1.2);
const QRectF RightArea(0, -0.6, 1.15, 1.2);
/// Half of the window in which a pupil is refined.
constexpr double RefineWide = 0.24;
constexpr double RefineHigh = 0.18;

/// How much a pupil is preferred in the middle of its window: a classifier's eye is nearly centred.
constexpr double MiddlePreference = 1.6;

constexpr double SeenConfidence = 0.9;
constexpr double MirroredConfidence = 0.45;
constexpr double GuessedConfidence = 0.2;

cv::Mat GreySample(const FacePhoto& photo, const FaceFrame& frame, const QRectF& area) {
    cv::Mat grey;
    cv::cvtColor(photo.Sampled(frame, area, EyePixelsPerUnit), grey, cv::COLOR_BGR2GRAY);
    return grey;
}

/// A classifier's eye, in frame units, with its doubt: how far it lies from the guess, less what
/// speaks for it. The less the better.
struct EyeCandidate {
    QPointF position;
    double doubt = 0;
};

std::vector<EyeCandidate> CandidatesIn(cv::Mat grey, const QRectF& area, double expectedX,
                                       const Cascades& cascades) {
    constexpr int Smallest = 36;
    constexpr int Largest = 110;
    std::vector<EyeCandidate> candidates;
    for (const Cascades::Kind kind : {Cascades::EyeWithGlasses, Cascades::Eye, Cascades::Eye}) {
        for (const CascadeHit& hit : cascades.Find(kind, grey, Smallest, Largest, 2)) {
            const QPointF at = area.topLeft() + QRectF(hit.box).center() / EyePixelsPerUnit;
            const double distance = std::hypot(at.x() - expectedX, at.y());
            candidates.push_back({at, distance - 0.15 * std::log1p(hit.votes)});
        }
        if (!candidates.empty()) {
            return candidates;
        }
        if (kind == Cascades::Eye) {
            cv::equalizeHist(grey, grey);  // the last try: an eye in the dark
        }
    }
    return candidates;
}

/// How unlikely two points are to be the eyes of the face that the guess stands for.
double PairDoubt(const EyeCandidate& left, const EyeCandidate& right) {
    const QPointF line = right.position - left.position;
    const double distance = std::hypot(line.x(), line.y());
    const double steepness = std::abs(std::atan2(line.y(), line.x()));
    return left.doubt + right.doubt + 2 * std::abs(std::log(std::max(distance, 0.05))) +
           1.5 * steepness;
}

const EyeCandidate* LeastDoubtful(const std::vector<EyeCandidate>& candidates) {
    const auto best = std::ranges::min_element(candidates, {}, &EyeCandidate::doubt);
    return best == candidates.end() ? nullptr : &*best;
}

struct RoughPair {
    QPointF left{-0.5, 0};
    QPointF right{0.5, 0};
    bool leftSeen = false;
    bool rightSeen = false;
};

RoughPair BestPair(const std::vector<EyeCandidate>& lefts,
                   const std::vector<EyeCandidate>& rights) {
    constexpr double MostDoubt = 1.6;
    RoughPair pair;
    double least = MostDoubt;
    for (const EyeCandidate& left : lefts) {
        for (const EyeCandidate& right : rights) {
            const double doubt = PairDoubt(left, right);
            if (doubt < least) {
                least = doubt;
                pair = {left.position, right.position, true, true};
            }
        }
    }
    if (pair.leftSeen) {
        return pair;
    }
    // One eye alone: the other one stands where the face's proportions put it.
    const EyeCandidate* left = LeastDoubtful(lefts);
    const EyeCandidate* right = LeastDoubtful(rights);
    if (left && (!right || left->doubt < right->doubt)) {
        return {left->position, left->position + QPointF(1, 0), true, false};
    }
    if (right) {
        return {right->position - QPointF(1, 0), right->position, false, true};
    }
    return pair;
}

QPointF Refined(const FacePhoto& photo, const FaceFrame& frame, QPointF eye) {
    const QRectF area(eye.x() - RefineWide, eye.y() - RefineHigh, 2 * RefineWide, 2 * RefineHigh);
    // Somewhat coarser finds the iris rather than single lashes, and takes less time.
    constexpr double RefinePixels = EyePixelsPerUnit * 0.8;
    cv::Mat grey;
    cv::cvtColor(photo.Sampled(frame, area, RefinePixels), grey, cv::COLOR_BGR2GRAY);
    const cv::Point2d pupil = PupilIn(grey);
    return area.topLeft() + QPointF(pupil.x + 0.5, pupil.y + 0.5) / RefinePixels;
}

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

EyePair FindEyes(const FacePhoto& photo, const FaceFrame& guess, const Cascades& cascades) {
    const cv::Mat left = GreySample(photo, guess, LeftArea);
    const cv::Mat right = GreySample(photo, guess, RightArea);
    const RoughPair rough = BestPair(CandidatesIn(left, LeftArea, -0.5, cascades),
                                     CandidatesIn(right, RightArea, 0.5, cascades));
    EyePair eyes;
    eyes.seen = int{rough.leftSeen} + int{rough.rightSeen};
    const double unseen = eyes.seen == 0 ? GuessedConfidence : MirroredConfidence;
    const FaceFrame frame =
        FaceFrame::OfEyes(guess.ToPhoto(rough.left), guess.ToPhoto(rough.right));
    eyes.left = {frame.ToPhoto(Refined(photo, frame, {-0.5, 0})),
                 rough.leftSeen ? SeenConfidence : unseen};
    eyes.right = {frame.ToPhoto(Refined(photo, frame, {0.5, 0})),
                  rough.rightSeen ? SeenConfidence : unseen};
    return eyes;
}

}  // namespace kadrona::imaging
