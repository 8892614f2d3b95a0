#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>
#include <vector>

#include "imaging/pixels/Arrangement.h"

namespace kadrona::printing {

/// How a sheet lies on its paper.
enum class Orientation {
    /// As the driver has the paper.
    Upright,
    /// Turned by a quarter.
    Turned,
    /// Whichever keeps more of the photos.
    Automatic,
};

/// What makes up for a printer that prints at another size or place than it was told. The defaults
/// change nothing.
struct Calibration {
    /// Factors by which the page is enlarged, across the paper and along its way through the
    /// printer.
    double across = 1;
    double along = 1;
    /// By how much the page is moved, millimetres to the right and down.
    QPointF offset;

    bool operator==(const Calibration&) const = default;
};

/// More copies of a page are a mistake.
inline constexpr int MostCopies = 999;

/// What is printed on the one page of a job, at its true size: an image repeated in a grid, the
/// copies touching each other, or an arrangement of pictures.
struct PrintImage {
    /// sRGB, opaque.
    QImage tile;
    int columns = 1;
    int rows = 1;
    /// Pixels divided by this are inches; above 0.
    int dotsPerInch = 0;
    /// Name of the job in the printer's queue.
    QString title;
    /// Width of the white between neighbouring photos in pixels: a tile has half of it at each
    /// side.
    int gap = 0;
    /// How this sheet is to lie, whatever the printer is set to.
    std::optional<Orientation> orientation = {};
    Calibration calibration = {};
    /// How often the page is printed, 1 ... MostCopies, whatever the printer is set to.
    std::optional<int> copies = {};
    /// In place of the tile and its grid, which are then not looked at.
    std::optional<imaging::Arrangement> arrangement = {};

    /// Printed size.
    QSizeF Millimetres() const;
    /// The photos without the white at the sheet's edges, millimetres, origin at the sheet's
    /// middle.
    QRectF PhotoMillimetres() const;
    /// Where each copy of the tile lies in the same coordinates, row by row from the top left.
    std::vector<QRectF> CopyMillimetres() const;
    double GapMillimetres() const;
};

}  // namespace kadrona::printing
