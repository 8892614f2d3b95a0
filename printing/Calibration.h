#pragma once

#include <QString>

#include "printing/PaperGeometry.h"
#include "printing/PrinterLayer.h"

namespace kadrona::printing {

/// What the user reads off the printed sheet, millimetres.
struct RulerReadings {
    double across;
    double along;
    /// From the left and the upper edge of the paper to the cross in the middle.
    double left;
    double top;
};

/// Says which reading no printer can have made.
class ReadingError : public PrinterError {
 public:
    ReadingError(const QString& text, double RulerReadings::*reading)
        : PrinterError(text), reading_(reading) {}

    double RulerReadings::*Reading() const { return reading_; }

 private:
    double RulerReadings::*reading_;
};

/// The calibration with which the sheet comes out right that was printed with `printedWith`:
/// factors to a thousandth, the offset to a tenth of a millimetre. Throws ReadingError with a
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
