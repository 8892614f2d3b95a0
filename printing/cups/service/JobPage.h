#pragma once

#include <QIODevice>
#include <QSizeF>

#include "printing/PrinterLayer.h"

namespace kadrona::printing::cups {

enum class SheetTurn { Upright, Landscape };

/// Writes the one page of a job as a PDF that no filter of the print service has a reason to scale,
/// shift or turn (QPdfWriter was weighed: it rounds the page to whole points): the page is exactly
/// the paper as the driver has it, without margins, and a sheet in landscape is turned on it by a
/// quarter to the left.
///
/// The tile is in the file once, lossless and in sRGB, and is drawn for each copy. An empty
/// `paperMillimetres` makes the page as large as the sheet. `device` is open for writing and empty.
/// Throws platform::Error with the bare reason.
void WriteJobPage(QIODevice& device, const PrintImage& image, QSizeF paperMillimetres,
                  SheetTurn turn);

}  // namespace kadrona::printing::cups
