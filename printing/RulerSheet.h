#pragma once

#include "printing/PaperGeometry.h"
#include "printing/PrintImage.h"

namespace kadrona::printing {

/// What is drawn on the sheet with which a printer is calibrated, millimetres. Lines A (across) and
/// B (along the paper's way) cross in the middle of the paper.
struct RulerLines {
    double across;
    double along;
};

/// As long as the paper has room for, in tens of millimetres, at most 100.
RulerLines RulerLinesFor(const PaperGeometry& paper);

/// The sheet: both lines with a mark for each millimetre, a frame of 35 x 45 mm and marks into the
/// corners. The image is as large as the paper and lies upright. Throws PrinterError where the
/// paper is not known or is too small.
PrintImage RulerSheet(const PaperGeometry& paper, const Calibration& calibration);

}  // namespace kadrona::printing
