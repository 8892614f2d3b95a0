#pragma once

#include "imaging/document/LayeredImage.h"

namespace kadrona::imaging {

/// Where a layered image is shown. What works on the image (cutting, tiling, placing a template)
/// reaches its display through this, so that it needs no window.
class ImageDisplay {
 public:
    virtual ~ImageDisplay() = default;

    virtual LayeredImage& Image() = 0;

    /// Fits the whole image into the display.
    virtual void Fit() = 0;
    virtual void Repaint() = 0;

    /// Nothing is painted between the two; calls nest.
    virtual void SuspendPainting() = 0;
    virtual void ResumePainting() = 0;
};

/// Suspends a display's painting for a scope.
class PaintingSuspension {
 public:
    explicit PaintingSuspension(ImageDisplay& display) : display_(display) {
        display_.SuspendPainting();
    }
    ~PaintingSuspension() { display_.ResumePainting(); }
    PaintingSuspension(const PaintingSuspension&) = delete;
    PaintingSuspension& operator=(const PaintingSuspension&) = delete;

 private:
    ImageDisplay& display_;
};

}  // namespace kadrona::imaging
