#pragma once

#include "imaging/view/ImageView.h"

namespace kadrona::imaging::view {

/// A scope in which a view goes on showing what it shows.
class PaintingSuspension {
 public:
    explicit PaintingSuspension(ImageView& view) : view_(view) { view_.SuspendPainting(); }
    ~PaintingSuspension() { view_.ResumePainting(); }
    PaintingSuspension(const PaintingSuspension&) = delete;
    PaintingSuspension& operator=(const PaintingSuspension&) = delete;

 private:
    ImageView& view_;
};

}  // namespace kadrona::imaging::view
