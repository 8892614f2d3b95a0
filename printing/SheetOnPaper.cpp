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

namespace {

/// Which pictures the copies of an arrangement show, its texts and marks.
void AddParts(const PrintImage& image, SheetOnPaper& laid) {
    const imaging::Arrangement& arrangement = *image.arrangement;
    const QSizeF sheet = image.Millimetres();
    const double scale = sheet.width() / arrangement.size.width();
    const auto toMillimetres = [&](const QRect& part) {
        return QRectF(QPointF(part.topLeft()) * scale, QSizeF(part.size()) * scale)
            .translated(-sheet.width() / 2, -sheet.height() / 2);
    };
    for (size_t i = 0; i < arrangement.placed.size(); ++i) {
        const imaging::Arrangement::Placed& placed = arrangement.placed[i];
        if (i < laid.copies.size()) {
            laid.copies[i].picture = placed.picture;
        } else {
            laid.texts.push_back({toMillimetres(arrangement.RectangleOf(placed)), placed.picture});
        }
    }
    for (const imaging::Arrangement::Mark& mark : arrangement.marks) {
        laid.marks.push_back(toMillimetres(mark.area));
    }
}

}  // namespace

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
    if (image.arrangement) {
        AddParts(image, laid);
    }
    if (image.calibration != Calibration()) {
        const QSizeF size = image.Millimetres();
        laid.told = (SheetToPaper(image, paper, turned) * toSheet)
                        .mapRect(QRectF({-size.width() / 2, -size.height() / 2}, size));
    }
    return laid;
}

}  // namespace kadrona::printing
