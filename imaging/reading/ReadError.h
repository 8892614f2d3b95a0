#pragma once

#include <QtGlobal>

#include "platform/Error.h"

namespace kadrona::imaging {

/// An image file could not be read: it is damaged, of no known format, empty or too large. The text
/// names the file and the reason.
class ReadError : public platform::FileError {
    using FileError::FileError;
};

struct ReadOptions {
    /// Turn and mirror the picture as its EXIF orientation says.
    bool applyOrientation = true;
    /// A file with more pixels is refused before anything of its size is allocated.
    qint64 maximumPixels = 200'000'000;
};

}  // namespace kadrona::imaging
