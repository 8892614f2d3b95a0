#pragma once

#include "imaging/face/FaceFrame.h"

namespace kadrona::imaging {

/// A point in the units of a FaceFrame.
struct FacePlace {
    QPointF place;
    double confidence = 0;  ///< as FacePoint's
};

/// The lowest point of the jaw: of all arcs that a chin's lower edge can be, the one along which
/// the picture changes most from above to below, weighed with where the eyes and the mouth let a
/// chin be expected.
FacePlace FindChin(const FacePhoto& photo, const FaceFrame& frame);

}  // namespace kadrona::imaging
