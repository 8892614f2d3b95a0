#include "imaging/face/EyeFinder.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>

#include "imaging/face/FaceRegression.h"
#include "imaging/face/PupilVote.h"

namespace kadrona::imaging {

namespace {

/// Resolution at which eyes are looked for, pixels for one distance of the pupils.
constexpr double EyePixelsPerUnit = 100;
/// Where a classifier may see an eye around the guess, in frame units.
const QRectF LeftArea(-1.15, -0.6, 1.15, 1.2);
const QRectF RightArea(0, -0.6, 1.15, 1.2);
/// Half of the window in which gradients vote for a pupil: around a classifier's eye, and around
/// what marked faces taught, which is nearer.
constexpr QSizeF RoughReach(0.24, 0.18);
constexpr QSizeF NearReach(0.18, 0.14);

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

/// The gradients' vote for the pupil of an eye of `frame`, photo pixels.
QPointF Voted(const FacePhoto& photo, const FaceFrame& frame, QPointF eye, QSizeF reach) {
    const QPointF half(reach.width(), reach.height());
    const QRectF area(eye - half, eye + half);
    // Somewhat coarser finds the iris rather than single lashes, and takes less time.
    constexpr double VotePixels = EyePixelsPerUnit * 0.8;
    cv::Mat grey;
    cv::cvtColor(photo.Sampled(frame, area, VotePixels), grey, cv::COLOR_BGR2GRAY);
    const cv::Point2d pupil = PupilIn(grey);
    return frame.ToPhoto(area.topLeft() + QPointF(pupil.x + 0.5, pupil.y + 0.5) / VotePixels);
}

/// An eye by all witnesses: what marked faces taught (`learned`) counts most. In many pixels the
/// vote of the gradients near it comes beside it, in few the classifier (`rough`, in the middle of
/// what it saw) and a vote around that: each errs in its own way.
QPointF Agreed(const FacePhoto& photo, const FaceFrame& rough, const FaceFrame& learned,
               QPointF eye) {
    constexpr double FewPixels = 24;
    constexpr double ManyPixels = 36;
    const double many = std::clamp((rough.unit - FewPixels) / (ManyPixels - FewPixels), 0.0, 1.0);
    const QPointF taught = learned.ToPhoto(eye);
    QPointF agreed;
    if (many < 1) {
        const QPointF seen = rough.ToPhoto(eye) + Voted(photo, rough, eye, RoughReach);
        agreed += (1 - many) / 6 * (4 * taught + seen);
    }
    if (many > 0) {
        agreed += many / 2 * (Voted(photo, learned, eye, NearReach) + taught);
    }
    return agreed;
}

/// Whether the table left the eyes where a classifier can have seen them. It knows few faces, and
/// may move far what is like none of them.
bool IsNear(const FaceFrame& learned, const FaceFrame& rough) {
    constexpr double Farthest = 0.4;
    const auto moved = [&](QPointF eye) {
        const QPointF move = rough.FromPhoto(learned.ToPhoto(eye)) - eye;
        return std::hypot(move.x(), move.y());
    };
    return moved({-0.5, 0}) < Farthest && moved({0.5, 0}) < Farthest;
}

}  // namespace

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
    const FaceFrame settled = LearnedFaces().Settled(photo, frame);
    const bool agree = IsNear(settled, frame);
    const FaceFrame& learned = agree ? settled : frame;
    const double seen = agree ? SeenConfidence : MirroredConfidence;
    eyes.left = {Agreed(photo, frame, learned, {-0.5, 0}), rough.leftSeen ? seen : unseen};
    eyes.right = {Agreed(photo, frame, learned, {0.5, 0}), rough.rightSeen ? seen : unseen};
    return eyes;
}

}  // namespace kadrona::imaging
