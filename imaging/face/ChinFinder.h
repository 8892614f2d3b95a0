#pragma once

#include "imaging/face/FaceFrame.h"

namespace kadrona::imaging {

/// A point in the units of a FaceFrame.
struct FacePlace {
    QPointF place;
    double confidence = 0;  ///< as FacePoint's
};

/// The lowest point of the jaw: of all half ellipses that a jaw can be, the one across which the
/// picture changes most, at the chin from light to dark and at the sides either way, weighed with
/// the place below the eyes at which the chin is expected. The sides tell a chin from a collar.
FacePlace FindChin(const FacePhoto& photo, const FaceFrame& frame, double expected);

}  // namespace kadrona::imaging
