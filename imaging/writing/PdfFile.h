#pragma once

#include <QByteArray>
#include <QIODevice>

#include "imaging/writing/RowSource.h"

namespace kadrona::imaging {

/// The page of a PDF file that shows one picture. QPdfWriter was weighed: it rounds the page to
/// whole points and writes the picture once for each copy. All texts are PDF syntax.
struct PdfPage {
    /// In points, 72 to the inch.
    QByteArray width;
    QByteArray height;
    /// What draws on the page; the picture is called /Image and fills the unit square.
    QByteArray content;
    /// More entries of the catalogue; begin with a blank.
    QByteArray catalogueEntries = {};
    /// The dictionary of information.
    QByteArray information = "<< >>";
};

/// Writes a PDF file (ISO 32000-1) of that page: the picture lossless, in sRGB. `device` is open
/// for writing and empty. Throws platform::Error with the bare reason.
void WritePdfFile(QIODevice& device, const PdfPage& page, const RowSource& picture);

}  // namespace kadrona::imaging
