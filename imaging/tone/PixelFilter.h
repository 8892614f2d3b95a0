#pragma once

#include <QRgb>
#include <memory>
#include <span>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// A change of colour that looks at each pixel alone, so that a live preview of what is visible
/// and the change of the whole photo are the same function.
class PixelFilter {
 public:
    virtual ~PixelFilter() = default;

    /// Changes pixels (0xffRRGGBB, sRGB) in place and leaves their alpha as it is. Safe to call
    /// from several threads at once.
    virtual void Apply(std::span<QRgb> pixels) const = 0;
};

using PixelFilterPointer = std::shared_ptr<const PixelFilter>;

/// The picture changed by a filter; a grid stays one. Throws platform::Error where memory is short.
Pixels Filtered(const Pixels& pixels, const PixelFilter& filter);

}  // namespace kadrona::imaging
