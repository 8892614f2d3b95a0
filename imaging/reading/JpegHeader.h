#pragma once

#include <QByteArrayView>
#include <QSize>
#include <optional>

namespace kadrona::imaging {

/// What a JPEG says before its pixels, which need not have its tables.
struct JpegHeader {
    QSize size;
    /// All is in its one scan. Else libjpeg keeps every coefficient of the picture in memory, and
    /// goes through them once more for each scan.
    bool hasOneScan = false;
};

/// Of the JPEG that `bytes` begins with; they may end behind the header. Nothing where that makes
/// no sense.
std::optional<JpegHeader> ReadJpegHeader(QByteArrayView bytes);

}  // namespace kadrona::imaging
