#pragma once

#include "imaging/face/ChinFinder.h"

namespace kadrona::imaging {

/// The top of the head, hair included, on the face's axis: the arc that best parts rows that look
/// like the background from rows that look like the hair, and across which the colours change,
/// weighed with where the eyes let a crown be expected. At the photo's edge where the head is cut.
/// `expected` (in the frame) tells where the colours of either are taken from. The confidence is
/// how well the arc parts them.
FacePlace FindCrown(const FacePhoto& photo, const FaceFrame& frame, double expected);

}  // namespace kadrona::imaging
