#pragma once

#include <QtGlobal>

#include "platform/Error.h"

namespace kadrona::imaging {

/// An image file could not be read: it is damaged, of no known format, empty or too large. The text
/// names the file and the reason.
class ReadError : public platform::FileError {
    using FileError::FileError;
};

/// A picture that is only to be looked at was not read within the patience of ReadOptions, or is
/// larger than they allow. Whoever opens it may see it all the same.
class ReadTooLong : public ReadError {
    using ReadError::ReadError;
};

class ReadProgress;

struct ReadOptions {
    /// Turn and mirror the picture as its EXIF orientation says.
    bool applyOrientation = true;
    /// A file with more pixels is refused before anything of its size is allocated.
    qint64 maximumPixels = 200'000'000;
    /// The same of a JPEG that is decoded row by row at a part of its width (shrink below), of
    /// which only that part is ever held; 0 is maximumPixels.
    qint64 maximumShrunkPixels = 0;
    /// 1, 2, 4 or 8: a JPEG is decoded at that part of its width, many times faster, for a picture
    /// that is only to be looked at, and of a camera's raw file its preview is taken where it has
    /// one. Other formats come as they are.
    int shrink = 1;
    /// Where nobody can give the reading up, how long it may take about; 0 for no limit. Throws
    /// ReadTooLong. What is read and only then calculated is bounded by maximumPixels.
    int patienceMilliseconds = 0;
    /// Told of a picture that takes long, and may give it up: then ReadCancelled is thrown. Null
    /// for none; outlives the reading.
    ReadProgress* progress = nullptr;
};

}  // namespace kadrona::imaging
