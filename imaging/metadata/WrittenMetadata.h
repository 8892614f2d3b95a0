#pragma once

#include <QByteArray>

#include "imaging/metadata/Iptc.h"

namespace kadrona::imaging {

/// What is written into an image file beside its pixels and its resolution.
struct WrittenMetadata {
    /// Name of the program that made the file, ASCII; empty writes none.
    QByteArray software;
    /// Written into JPEG files alone.
    IptcItems iptc = {};
};

}  // namespace kadrona::imaging
