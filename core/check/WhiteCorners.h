#pragma once

#include <QRect>

#include "imaging/pixels/Pixels.h"

namespace kadrona::core {

/// True where the cut has a corner that a rotation left pure white. In a photo that was turned
/// freely since it was opened (`turned`) that is any white corner that is not one of a white wall.
/// In others, which another program may have turned, only a white triangle with a straight edge
/// from side to side counts: a white wall is no fault. `rectangle` in photo pixels.
bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle, bool turned);

}  // namespace kadrona::core
