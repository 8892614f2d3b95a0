#pragma once

#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// The picture's tile, of an arrangement the whole, with colours that are not multiplied with their
/// alpha, as a change of colour needs them: premultiplied ones could leave what their alpha allows.
/// Shares the tile's pixels where it is opaque. Throws platform::Error where memory is short.
inline QImage StraightAlpha(const Pixels& pixels) {
    const QImage tile = pixels.TileOrWhole();
    return tile.hasAlphaChannel() ? RequireAllocated(tile.convertToFormat(QImage::Format_ARGB32))
                                  : tile;
}

}  // namespace kadrona::imaging
