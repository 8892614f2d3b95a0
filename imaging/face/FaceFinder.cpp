#include "imaging/face/FaceFinder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "imaging/face/ChinFinder.h"
#include "imaging/face/CrownFinder.h"
#include "imaging/face/EnoughMemory.h"
#include "imaging/face/EyeFinder.h"
#include "imaging/face/FaceFrame.h"
#include "imaging/face/FaceRegression.h"
#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

/// Shorter sides than this hold no face that could be measured.
constexpr int SmallestSide = 40;
/// Smallest face, as a part of the shorter side of the photo.
constexpr double SmallestFace = 0.09;
/// The same where the picture has to be turned.
constexpr double SmallestTiltedFace = 0.125;
/// Where alt2's box has the eyes: their middle below its upper edge and their distance, as parts of
/// its side.
constexpr double EyesBelowTop = 0.38;
constexpr double EyeDistanceInBox = 0.40;

/// What a face gathers at least, by the eyes seen of it. With fewer than the last no eyes make a
/// pattern likely.
constexpr std::array FewestVotes{20, 12, 8};
/// The same where another classifier agrees, and what it has to gather.
constexpr std::array FewestVotesIfConfirmed{12, 12, 4};
constexpr int FewestVotesOfConfirmation = 8;

/// A face's box, as a frame that guesses its eyes.
struct FaceCandidate {
    FaceFrame frame;
    double side = 0;  ///< photo pixels
    int votes = 0;

    bool operator==(const FaceCandidate& other) const {
        return frame.origin == other.frame.origin && frame.tiltDegrees == other.frame.tiltDegrees &&
               side == other.side && votes == other.votes;
    }
};

/// The reduction turned about its middle by an angle, and the way back.
struct TurnedPicture {
    cv::Mat grey;
    cv::Matx23d back;
};

TurnedPicture TurnedBy(const cv::Mat& grey, double degrees) {
    if (degrees == 0) {
        return {grey, cv::Matx23d(1, 0, 0, 0, 1, 0)};
    }
    const cv::Point2f middle(static_cast<float>(grey.cols) / 2, static_cast<float>(grey.rows) / 2);
    const cv::Matx23d forth = cv::getRotationMatrix2D(middle, degrees, 1);
    TurnedPicture turned;
    cv::warpAffine(grey, turned.grey, forth, grey.size(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    cv::invertAffineTransform(forth, turned.back);
    return turned;
}

/// Widths of faces as parts of the photo's shorter side.
struct FaceWidths {
    double smallest = 0;  ///< a search takes time by its inverse square
    double largest = 1;
};
constexpr FaceWidths LargeFaces{2.5 * SmallestFace, 1};

std::vector<FaceCandidate> CandidatesAt(const FacePhoto& photo, const cv::Mat& grey, double degrees,
                                        FaceWidths widths, int fewestVotes,
                                        const Cascades& cascades) {
    const TurnedPicture turned = TurnedBy(grey, degrees);
    const int shorter = std::min(grey.cols, grey.rows);
    const int smallest = std::max(24, static_cast<int>(widths.smallest * shorter));
    const int largest = static_cast<int>(widths.largest * shorter);
    std::vector<FaceCandidate> candidates;
    for (const CascadeHit& hit :
         cascades.Find(Cascades::FrontalFace, turned.grey, smallest, largest, fewestVotes - 1)) {
        const double side = hit.box.width();
        const cv::Vec3d eyes(hit.box.x() + side / 2, hit.box.y() + EyesBelowTop * side, 1);
        const cv::Vec2d at = turned.back * eyes;
        const double scale = photo.Reduction();
        candidates.push_back(
            {{QPointF(at[0], at[1]) * scale, EyeDistanceInBox * side * scale, degrees},
             side * scale,
             hit.votes});
    }
    return candidates;
}

bool Overlap(const FaceCandidate& one, const FaceCandidate& other) {
    const QPointF between = one.frame.origin - other.frame.origin;
    return std::hypot(between.x(), between.y()) < 0.5 * std::max(one.side, other.side);
}

/// Adds those that are not there yet; of two at one place the one with more votes stays.
void Merge(std::vector<FaceCandidate>& all, const std::vector<FaceCandidate>& more) {
    for (const FaceCandidate& candidate : more) {
        const auto same = std::ranges::find_if(
            all, [&](const FaceCandidate& other) { return Overlap(candidate, other); });
        if (same == all.end()) {
            all.push_back(candidate);
        } else if (candidate.votes > same->votes) {
            *same = candidate;
        }
    }
}

/// How much a face looks like the one that the photo was taken of: large and in the middle.
double Prominence(const FaceCandidate& candidate, cv::Size photo) {
    const double x = candidate.frame.origin.x() / photo.width - 0.5;
    const double y = candidate.frame.origin.y() / photo.height - 0.45;
    return candidate.side * std::exp(-1.5 * (x * x + y * y)) *
           std::min(1.0, 0.4 + candidate.votes / 20.0);
}

struct SeenFace {
    FaceCandidate candidate;
    EyePair eyes;
};

/// A pattern gathers fewer votes than a face, and has no eyes more often.
bool IsLikely(const SeenFace& face) {
    return face.candidate.votes >= FewestVotes.at(static_cast<size_t>(face.eyes.seen));
}

/// The eyes of a candidate, unless `earlier` has it.
EyePair EyesOf(const FacePhoto& photo, const FaceCandidate& candidate,
               const std::vector<SeenFace>& earlier, const Cascades& cascades) {
    const auto known = std::ranges::find_if(
        earlier, [&](const SeenFace& face) { return face.candidate == candidate; });
    return known != earlier.end() ? known->eyes : FindEyes(photo, candidate.frame, cascades);
}

/// Fifty faces of a group need no eyes each: only the most prominent few are of interest.
std::vector<FaceCandidate> MostProminent(const FacePhoto& photo,
                                         std::vector<FaceCandidate> candidates) {
    constexpr size_t MostFaces = 4;
    std::ranges::sort(candidates, std::greater(), [&](const FaceCandidate& candidate) {
        return Prominence(candidate, photo.Size());
    });
    candidates.resize(std::min(candidates.size(), MostFaces));
    return candidates;
}

/// The candidates with their eyes, the most prominent first, as long as eyes are seen. `earlier` is
/// what an earlier call gave.
std::vector<SeenFace> WithEyes(const FacePhoto& photo, const std::vector<FaceCandidate>& candidates,
                               const std::vector<SeenFace>& earlier, const Cascades& cascades) {
    std::vector<SeenFace> faces;
    for (const FaceCandidate& candidate : MostProminent(photo, candidates)) {
        faces.push_back({candidate, EyesOf(photo, candidate, earlier, cascades)});
    }
    std::ranges::stable_sort(faces, std::greater(), IsLikely);
    return faces;
}

bool IsSure(const std::vector<SeenFace>& faces) {
    return !faces.empty() && faces.front().eyes.seen == 2 && IsLikely(faces.front());
}

/// The faces of the upright picture and, until one is sure, of the picture turned one way and the
/// other: large ones first, for they are quickly found. Adds every candidate to `candidates`.
std::vector<SeenFace> FacesIn(const FacePhoto& photo, std::vector<FaceCandidate>& candidates,
                              const Cascades& cascades) {
    constexpr double Turn = 14;
    cv::Mat grey;
    cv::cvtColor(photo.Reduced(), grey, cv::COLOR_BGR2GRAY);
    candidates = CandidatesAt(photo, grey, 0, {SmallestFace}, FewestVotes.back(), cascades);
    std::vector<SeenFace> faces = WithEyes(photo, candidates, {}, cascades);
    // The widths overlap by the hits that a face gathers. Small tilted faces are none of a
    // portrait.
    constexpr std::array Passes{LargeFaces, FaceWidths{SmallestTiltedFace, 3.2 * SmallestFace}};
    for (const FaceWidths& widths : Passes) {
        for (const double degrees : {Turn, -Turn}) {
            if (IsSure(faces)) {
                return faces;
            }
            Merge(candidates,
                  CandidatesAt(photo, grey, degrees, widths, FewestVotes.back(), cascades));
            faces = WithEyes(photo, candidates, faces, cascades);
        }
    }
    return faces;
}

/// Whether a classifier that was taught with other faces sees one at the candidate, too.
bool IsConfirmed(const FacePhoto& photo, const FaceCandidate& candidate, const Cascades& cascades) {
    constexpr double PixelsPerUnit = 36;
    constexpr int Smallest = 60;
    constexpr int Largest = 130;
    const QRectF around(-2.2, -2, 4.4, 4.4);
    cv::Mat grey;
    cv::cvtColor(photo.Sampled(candidate.frame, around, PixelsPerUnit), grey, cv::COLOR_BGR2GRAY);
    return !cascades
                .Find(Cascades::FrontalFaceAgain, grey, Smallest, Largest,
                      FewestVotesOfConfirmation - 1)
                .empty();
}

/// Where nothing is likely by itself: the candidates, and weaker ones of the upright picture, that
/// are confirmed, the most prominent first.
std::vector<SeenFace> ConfirmedFaces(const FacePhoto& photo, std::vector<FaceCandidate> candidates,
                                     const std::vector<SeenFace>& earlier,
                                     const Cascades& cascades) {
    cv::Mat grey;
    cv::cvtColor(photo.Reduced(), grey, cv::COLOR_BGR2GRAY);
    Merge(candidates,
          CandidatesAt(photo, grey, 0, LargeFaces, FewestVotesIfConfirmed.back(), cascades));
    std::vector<SeenFace> faces;
    for (const FaceCandidate& candidate : MostProminent(photo, std::move(candidates))) {
        if (!IsConfirmed(photo, candidate, cascades)) {
            continue;
        }
        const SeenFace face{candidate, EyesOf(photo, candidate, earlier, cascades)};
        if (candidate.votes >= FewestVotesIfConfirmed.at(static_cast<size_t>(face.eyes.seen))) {
            faces.push_back(face);
        }
    }
    return faces;
}

/// How many faces there are. Of a group only some were looked at closely; of those, patterns are
/// none.
int CountOf(const std::vector<SeenFace>& faces, const std::vector<FaceCandidate>& candidates) {
    return static_cast<int>(candidates.size()) -
           static_cast<int>(
               std::ranges::count_if(faces, [](const SeenFace& face) { return !IsLikely(face); }));
}

/// Looks once more from the found eyes where the head is tilted, for the classifiers know eyes on a
/// level line alone.
EyePair Settled(const FacePhoto& photo, const EyePair& eyes, double guessedTilt,
                const Cascades& cascades) {
    constexpr double WorthAnotherLook = 5;
    const FaceFrame frame = FaceFrame::OfEyes(eyes.left.position, eyes.right.position);
    if (std::abs(frame.tiltDegrees - guessedTilt) < WorthAnotherLook) {
        return eyes;
    }
    const EyePair again = FindEyes(photo, frame, cascades);
    return again.seen >= eyes.seen ? again : eyes;
}

/// A place on the face's axis by what stands out in the picture and by what marked faces taught,
/// which counts `share`. Less sure where the two are apart.
FacePlace AgreedPlace(const FacePlace& seen, double learned, double share) {
    constexpr double Apart = 0.3;
    const double off = (seen.place.y() - learned) / Apart;
    return {{seen.place.x(), share * learned + (1 - share) * seen.place.y()},
            seen.confidence * (0.4 + 0.6 * std::exp(-off * off / 2))};
}

/// The chin: where the jaw's edge is looked for depends on what was learned.
FacePlace ChinOf(const FacePhoto& photo, const FaceFrame& frame) {
    const double learned = LearnedFaces().ChinIn(photo, frame);
    return AgreedPlace(FindChin(photo, frame, learned), learned, 0.5);
}

/// The crown: never above the photo's edge by what was learned alone. The surer the silhouette, the
/// less counts what was learned.
FacePlace CrownOf(const FacePhoto& photo, const FaceFrame& frame) {
    const double top = frame.FromPhoto({frame.origin.x(), 0}).y();
    const double learned = std::max(top, LearnedFaces().CrownIn(photo, frame));
    const FacePlace seen = FindCrown(photo, frame, learned);
    const double share = std::clamp(0.95 - 1.5 * seen.confidence, 0.2, 0.8);
    return AgreedPlace(seen, learned, share);
}

Face Measured(const FacePhoto& photo, const EyePair& eyes) {
    Face face;
    face.leftEye = eyes.left;
    face.rightEye = eyes.right;
    face.tiltDegrees = TiltDegrees(eyes.left.position, eyes.right.position);
    const FaceFrame frame = FaceFrame::OfEyes(eyes.left.position, eyes.right.position);
    const FacePlace chin = ChinOf(photo, frame);
    const FacePlace crown = CrownOf(photo, frame);
    face.chin = {frame.ToPhoto(chin.place), chin.confidence};
    face.crown = {frame.ToPhoto(crown.place), crown.confidence};
    face.skull = {EstimatedSkull(face), 0.5};
    return face;
}

FaceSearch Searched(const Pixels& photo, const Cascades& cascades) {
    if (photo.Width() < SmallestSide || photo.Height() < SmallestSide) {
        return {};
    }
    const QImage image = photo.ToImage();
    const FacePhoto facePhoto(ConstMatView(image));
    if (std::min(facePhoto.Reduced().cols, facePhoto.Reduced().rows) < SmallestSide) {
        return {};
    }
    std::vector<FaceCandidate> candidates;
    std::vector<SeenFace> faces = FacesIn(facePhoto, candidates, cascades);
    int count = CountOf(faces, candidates);
    if (faces.empty() || !IsLikely(faces.front())) {
        faces = ConfirmedFaces(facePhoto, candidates, faces, cascades);
        count = static_cast<int>(faces.size());
    }
    if (faces.empty()) {
        return {};
    }
    const EyePair eyes =
        Settled(facePhoto, faces.front().eyes, faces.front().candidate.frame.tiltDegrees, cascades);
    return {Measured(facePhoto, eyes), count};
}

}  // namespace

FaceSearch FindFace(const Pixels& photo, const Cascades& cascades) {
    return WithEnoughMemory([&] { return Searched(photo, cascades); });
}

FaceSearch FindFace(const Pixels& photo) {
    return FindFace(photo, InstalledCascades());
}

}  // namespace kadrona::imaging
