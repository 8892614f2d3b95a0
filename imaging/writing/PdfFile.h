#pragma once

#include <QByteArray>
#include <QIODevice>
#include <vector>

#include "imaging/writing/RowSource.h"

namespace kadrona::imaging {

/// The page of a PDF file that shows pictures. QPdfWriter was weighed: it rounds the page to
/// whole points and writes the picture once for each copy. All texts are PDF syntax.
struct PdfPage {
    /// In points, 72 to the inch.
    QByteArray width;
    QByteArray height;
    /// What draws on the page; the pictures are called /Image0, /Image1 and so on, and each fills
    /// the unit square.
    QByteArray content;
    /// More entries of the catalogue; begin with a blank.
    QByteArray catalogueEntries = {};
    /// The dictionary of information.
    QByteArray information = "<< >>";
};

/// Writes a PDF file (ISO 32000-1) of that page: the pictures lossless, in sRGB, each once.
/// `device` is open for writing and empty. Throws platform::Error with the bare reason.
void WritePdfFile(QIODevice& device, const PdfPage& page, const std::vector<RowSource>& pictures);

/// Draws an arrangement in a space whose unit is its pixel, the origin at its upper left corner and
/// y counted upwards, so that it lies below the x axis. Its pictures are called as PdfPage says.
QByteArray DrawnArrangement(const Arrangement& arrangement);

/// The sources of an arrangement's pictures, in their order.
std::vector<RowSource> PictureSources(const Arrangement& arrangement);

}  // namespace kadrona::imaging
