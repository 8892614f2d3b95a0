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

}  // namespace kadrona::imaging
