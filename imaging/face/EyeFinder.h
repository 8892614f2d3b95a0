#pragma once

#include "imaging/face/Cascades.h"
#include "imaging/face/Face.h"
#include "imaging/face/FaceFrame.h"

namespace kadrona::imaging {

/// The pupils of one face.
struct EyePair {
    FacePoint left;
    FacePoint right;
    /// Eyes that a classifier saw, 0 ... 2; the others are guessed.
    int seen = 0;
};

/// Finds the pupils near where `guess` expects them. The confidence of an eye that no classifier
/// saw is low.
EyePair FindEyes(const FacePhoto& photo, const FaceFrame& guess, const Cascades& cascades);

/// The middle of the dark disc of an eye in a grey picture: the point that most gradients of the
/// picture point away from, dark points preferred (F. Timm and E. Barth, "Accurate eye centre
/// localisation by means of gradients", VISAPP 2011). Pixels from the picture's corner.
cv::Point2d PupilIn(const cv::Mat& grey);

}  // namespace kadrona::imaging
