#pragma once

#include <QRect>

#include "imaging/pixels/Pixels.h"

namespace kadrona::core {

/// True where a corner of the cut is pure white over a triangle, as a rotation leaves it.
bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle);

}  // namespace kadrona::core
