#pragma once

#include <QString>

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

/// What the user reads off the printed sheet, millimetres.
struct RulerReadings {
    double across;
    double along;
    /// From the left and the upper edge of the paper to the cross in the middle.
    double left;
    double top;
};

/// The calibration with which the sheet comes out right that was printed with `printedWith`:
/// factors to a thousandth, the offset to a tenth of a millimetre. Throws PrinterError with a
/// German text for readings that no printer can have made.
Calibration Calibrated(const PaperGeometry& paper, const Calibration& printedWith,
                       const RulerReadings& readings);

/// For reading: "quer 97,8 %, längs 100,0 %, 1,4 mm nach links".
QString CalibrationText(const Calibration& calibration);

/// The calibration kept for a printer profile, in "PrinterCalibration.ini" of the data folder; none
/// where nothing or nonsense stands there. Throws platform::FileError where the file cannot be
/// read.
Calibration StoredCalibration(const QString& dataFolder, const QString& profile);
/// Throws platform::Error.
void StoreCalibration(const QString& dataFolder, const QString& profile,
                      const Calibration& calibration);
/// Forgets what is stored. Throws platform::Error.
void EraseCalibration(const QString& dataFolder, const QString& profile);

}  // namespace kadrona::printing
