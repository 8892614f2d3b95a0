#pragma once

#include "imaging/face/Face.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

class Cascades;

/// Looks for the face of a portrait. Works on a reduction to 600 rows, the eyes on more pixels
/// where the photo has them. Faces narrower than about a tenth of its shorter side are not seen
/// (an eighth where they are tilted by more than about 12 degrees), nor ones turned by more than
/// about 25 degrees. Never changes the photo. Throws platform::Error where memory is short.
FaceSearch FindFace(const Pixels& photo, const Cascades& cascades);

/// The same with the classifiers of this machine. Throws CascadesMissing too.
FaceSearch FindFace(const Pixels& photo);

}  // namespace kadrona::imaging
