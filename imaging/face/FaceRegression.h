#pragma once

#include <QByteArray>
#include <vector>

#include "imaging/face/FaceFrame.h"

namespace kadrona::imaging {

/// Moves rough guesses of pupils, chin and crown to where pictures of many faces, with these points
/// marked, had them: step by step, each a linear map from the gradients around the guess (X. Xiong
/// and F. De la Torre, "Supervised descent method and its applications to face alignment", CVPR
/// 2013). tools/TrainFaces.cpp makes the table.
class FaceRegression {
 public:
    /// What a step sees and moves.
    enum Kind {
        Pair,       ///< sees the face, moves both eyes: left x and y, right x and y
        Eye,        ///< sees and moves each eye: x and y, the right eye mirrored
        EyeByBoth,  ///< sees both eyes, moves each: someone looks aside with both
        Chin,       ///< sees the lower face, places the chin below the eyes
        NearChin,   ///< sees what is around the chin, moves it
        Crown,      ///< sees the head's upper part, places the crown
        NearCrown,  ///< sees what is around the crown, moves it
    };
    /// The move is `offsets` and, for each number of the grid, its weights.
    struct Step {
        Kind kind;
        cv::Mat1f weights;  ///< a row for each number of the grid, a column for each of the move
        cv::Mat1f offsets;  ///< one row
    };

    explicit FaceRegression(std::vector<Step> steps) : steps_(std::move(steps)) {}
    /// Reads a table. Throws platform::FileError where it is damaged or lacks pupils, chin or
    /// crown.
    static FaceRegression Read(const QByteArray& table);

    /// The frame whose eyes are the pupils, from one whose eyes are near them.
    FaceFrame Settled(const FacePhoto& photo, FaceFrame frame) const;
    /// How far the chin lies below the eyes of `frame`, in its units.
    double ChinIn(const FacePhoto& photo, const FaceFrame& frame) const;
    /// The same for the crown, which lies above them: negative.
    double CrownIn(const FacePhoto& photo, const FaceFrame& frame) const;

    /// What a step sees, as numbers. `right` is asked for by steps that move each eye, `y` by those
    /// that look around a place.
    static std::vector<float> Grid(Kind kind, const FacePhoto& photo, const FaceFrame& frame,
                                   bool right, double y);
    /// The frame moved by a step of the eyes; `left` and `right` are what it says of each, or
    /// `left` all that a step of Kind Pair says.
    static FaceFrame Moved(const FaceFrame& frame, Kind kind, const cv::Mat1f& left,
                           const cv::Mat1f& right);
    static const char* NameOf(Kind kind);
    static int GridSize(Kind kind);
    static int MoveSize(Kind kind);
    static bool MovesEyes(Kind kind) { return kind == Pair || MovesEachEye(kind); }
    static bool MovesEachEye(Kind kind) { return kind == Eye || kind == EyeByBoth; }

 private:
    /// A place on the face's axis after the steps of two kinds.
    double PlaceIn(const FacePhoto& photo, const FaceFrame& frame, Kind first, Kind near) const;

    std::vector<Step> steps_;
};

/// The table that comes with the program.
const FaceRegression& LearnedFaces();

}  // namespace kadrona::imaging
