#pragma once

#include <QMarginsF>
#include <QRectF>
#include <optional>
#include <vector>

#include "printing/PaperGeometry.h"
#include "printing/PrintImage.h"

namespace kadrona::printing {

/// A sheet on its paper as the user will hold it, for showing it before it is printed. Millimetres
/// as the sheet is looked at, the origin at its middle: a sheet that is printed turned has its
/// paper turned instead.
struct SheetOnPaper {
    struct Copy {
        /// What the tile covers.
        QRectF place;
        /// The photo without the white around it.
        QRectF photo;
        /// How much of the photo is cut off at each of its sides.
        QMarginsF lost;
        /// Index of the picture that it shows.
        size_t picture = 0;

        /// The parts of the photo that are cut off; they may overlap in corners.
        std::vector<QRectF> LostParts() const;
    };

    QRectF paper;
    /// What the printer reaches of the paper.
    QRectF reached;
    /// Row by row from the top left.
    std::vector<Copy> copies;
    /// A line of text.
    struct Text {
        QRectF place;
        size_t picture;
    };
    std::vector<Text> texts;
    /// Along which the copies are cut apart.
    std::vector<QRectF> marks;
    /// Where the printer is told to print the sheet, so that with its errors it comes to lie as
    /// above; nothing without a calibration.
    std::optional<QRectF> told;
};

/// Where PrinterLayer::Print puts the sheet. A paper that is not known is as large as the sheet.
SheetOnPaper LaidOnPaper(const PrintImage& image, const PrinterPaper& setting);

}  // namespace kadrona::printing
