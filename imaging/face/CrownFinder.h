#pragma once

#include "imaging/face/ChinFinder.h"

namespace kadrona::imaging {

/// The top of the head, hair included, on the face's axis: the arc that best parts rows that look
/// like the background beside the head from rows that do not, and across which the colours change,
/// weighed with where the eyes let a crown be expected. At the photo's edge where the head is cut.
FacePlace FindCrown(const FacePhoto& photo, const FaceFrame& frame);

}  // namespace kadrona::imaging
