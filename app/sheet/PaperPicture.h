#pragma once

#include <QRect>
#include <optional>
#include <vector>

#include "core/sheet/PaperSheet.h"
#include "printing/SheetOnPaper.h"

namespace kadrona::app {

/// The layout of a paper as the preview draws it: `photos` and `text`, the line of text, are places
/// in micrometres from the corner at the upper left. The paper, which the choice must have, is
/// reached everywhere; the text takes the second picture.
printing::SheetOnPaper PaperPicture(const std::vector<QRect>& photos,
                                    const core::PaperChoice& choice,
                                    const std::optional<QRect>& text);

}  // namespace kadrona::app
