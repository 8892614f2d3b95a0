#pragma once

#include <QString>

#include "imaging/tone/Curves.h"
#include "platform/Error.h"

namespace kadrona::imaging {

/// A curve preset could not be read or written. The text names the file and the reason.
class CurveFileError : public platform::FileError {
    using FileError::FileError;
};

/// Points that the four curves of one preset file may have together: the file is built in 256
/// bytes, 22 of them fixed, 4 a point.
inline constexpr int MaximumCurvePoints = 58;

/// Reads a preset (".acv"): 16-bit big-endian words. Takes versions 1 and 4, one curve and more
/// than five, curves of a single point or none, points in any order and repeated ones. A missing
/// curve is the identity; what follows the curves is ignored. Throws CurveFileError where the file
/// cannot be read, is cut off or holds what no curve can be.
CurveSet ReadCurveFile(const QString& path);

/// Writes a preset: version 4, five curves, the fifth the identity. Throws CurveFileError, also for
/// more than MaximumCurvePoints; an older file is then untouched.
void WriteCurveFile(const QString& path, const CurveSet& curves);

}  // namespace kadrona::imaging
