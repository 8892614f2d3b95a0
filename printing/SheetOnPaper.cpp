#include "printing/SheetOnPaper.h"

#include <algorithm>

namespace kadrona::printing {

std::vector<QRectF> SheetOnPaper::Copy::LostParts() const {
    std::vector<QRectF> parts;
    const auto add = [&](double left, double top, double width, double height) {
        if (width > 0 && height > 0) {
            parts.emplace_back(left, top, width, height);
        }
    };
    const double right = std::min(lost.right(), photo.width());
    const double bottom = std::min(lost.bottom(), photo.height());
    add(photo.left(), photo.top(), std::min(lost.left(), photo.width()), photo.height());
    add(photo.right() - right, photo.top(), right, photo.height());
    add(photo.left(), photo.top(), photo.width(), std::min(lost.top(), photo.height()));
    add(photo.left(), photo.bottom() - bottom, photo.width(), bottom);
    return parts;
}

SheetOnPaper LaidOnPaper(const PrintImage& image, const PrinterPaper& setting) {
    const PaperGeometry paper = KnownPaper(image, setting.geometry);
    const bool turned = IsTurned(image, setting);
    // What a calibration changes is undone by the printer.
    const QTransform toSheet = Uncalibrated(image, paper, turned).inverted();
    SheetOnPaper laid;
    laid.paper = toSheet.mapRect(paper.paper);
    laid.reached = KeptOf(image, paper, turned);
    const double white = image.GapMillimetres() / 2;
    for (const QRectF& place : image.CopyMillimetres()) {
        const QRectF photo = place.adjusted(white, white, -white, -white);
        laid.copies.push_back({place, photo, LostAt(photo, laid.reached)});
    }
    if (image.calibration != Calibration()) {
        const QSizeF size = image.Millimetres();
        laid.told = (SheetToPaper(image, paper, turned) * toSheet)
                        .mapRect(QRectF({-size.width() / 2, -size.height() / 2}, size));
    }
    return laid;
}

}  // namespace kadrona::printing
