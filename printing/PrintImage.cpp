#include "printing/PrintImage.h"

namespace kadrona::printing {

namespace {

constexpr double MillimetresPerInch = 25.4;

}  // namespace

QSizeF PrintImage::Millimetres() const {
    const QSizeF pixels(double(tile.width()) * columns, double(tile.height()) * rows);
    return pixels * MillimetresPerInch / dotsPerInch;
}

QRectF PrintImage::PhotoMillimetres() const {
    const QSizeF size = Millimetres();
    const double white = GapMillimetres() / 2;
    return QRectF({-size.width() / 2, -size.height() / 2}, size)
        .adjusted(white, white, -white, -white);
}

std::vector<QRectF> PrintImage::CopyMillimetres() const {
    const QSizeF sheet = Millimetres();
    const QSizeF size(sheet.width() / columns, sheet.height() / rows);
    std::vector<QRectF> places;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            places.emplace_back(QPointF(column * size.width() - sheet.width() / 2,
                                        row * size.height() - sheet.height() / 2),
                                size);
        }
    }
    return places;
}

double PrintImage::GapMillimetres() const {
    return gap * MillimetresPerInch / dotsPerInch;
}

}  // namespace kadrona::printing
