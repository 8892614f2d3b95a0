#pragma once

#include <QIODevice>

#include "printing/PrinterLayer.h"

namespace kadrona::printing::cups {

/// Writes the one page of a job as a PDF that no filter of the print service has a reason to scale,
/// shift or turn (QPdfWriter was weighed: it rounds the page to whole points): the page is exactly
/// the paper as the driver has it, without margins. The sheet lies where printing::SheetToPaper
/// puts it, with the driver's spreading undone.
///
/// The tile is in the file once, lossless and in sRGB, and is drawn for each copy. An unknown paper
/// makes the page as large as the sheet. `device` is open for writing and empty. Throws
/// platform::Error with the bare reason.
void WriteJobPage(QIODevice& device, const PrintImage& image, const PrinterPaper& setting);

}  // namespace kadrona::printing::cups
