#pragma once

#include <QByteArray>

namespace kadrona::imaging {

/// What is written into an image file beside its pixels and its resolution.
struct ImageMetadata {
    /// Name of the program that made the file, ASCII; empty writes none.
    QByteArray software;
};

}  // namespace kadrona::imaging
