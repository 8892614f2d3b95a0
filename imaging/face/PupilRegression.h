#pragma once

#include <QByteArray>
#include <vector>

#include "imaging/face/FaceFrame.h"

namespace kadrona::imaging {

/// Moves a rough guess of both pupils to where pictures of many faces, with their pupils marked,
/// had them: step by step, each a linear map from the gradients around the guess (X. Xiong and F.
/// De la Torre, "Supervised descent method and its applications to face alignment", CVPR 2013).
/// The first steps see the face and move both eyes, the later ones see and move an eye each.
/// tools/TrainPupils.cpp makes the table.
class PupilRegression {
 public:
    /// One step: the move is `offsets` and, for each number of the grid, its weights.
    struct Step {
        cv::Mat1f weights;  ///< a row for each number of the grid, a column for each of the move
        cv::Mat1f offsets;  ///< one row
    };
    /// What a step moves: both eyes (left x and y, right x and y) or one (x and y, as in EyeGrid).
    enum Kind { Pair, Eye };

    explicit PupilRegression(std::vector<Step> pairSteps = {}, std::vector<Step> eyeSteps = {})
        : pairSteps_(std::move(pairSteps)), eyeSteps_(std::move(eyeSteps)) {}
    /// Reads a table. Throws platform::FileError where it is damaged.
    static PupilRegression Read(const QByteArray& table);

    /// The frame whose eyes are the pupils, from one whose eyes are near them.
    FaceFrame Settled(const FacePhoto& photo, FaceFrame frame) const;

    /// What the steps see, and the numbers that they make of it.
    static std::vector<float> PairGrid(const FacePhoto& photo, const FaceFrame& frame);
    /// The right eye is seen mirrored, so that both eyes learn from each other.
    static std::vector<float> EyeGrid(const FacePhoto& photo, const FaceFrame& frame, bool right);
    /// The frame after one step.
    static FaceFrame AfterPair(const FacePhoto& photo, const FaceFrame& frame, const Step& step);
    static FaceFrame AfterEyes(const FacePhoto& photo, const FaceFrame& frame, const Step& step);
    static int GridSize(Kind kind);
    static int MoveSize(Kind kind) { return kind == Pair ? 4 : 2; }

 private:
    std::vector<Step> pairSteps_;
    std::vector<Step> eyeSteps_;
};

/// The table that comes with the program.
const PupilRegression& TrainedPupils();

}  // namespace kadrona::imaging
