#pragma once

#include "imaging/document/ImageDisplay.h"

namespace kadrona::imaging {

/// A display that shows nothing, for working on images without a window.
class WindowlessDisplay : public ImageDisplay {
 public:
    LayeredImage& Image() override { return image_; }
    void Fit() override {}
    void Repaint() override {}
    void SuspendPainting() override {}
    void ResumePainting() override {}

 private:
    LayeredImage image_;
};

}  // namespace kadrona::imaging
