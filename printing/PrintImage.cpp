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
    const double white = gap * MillimetresPerInch / dotsPerInch / 2;
    return QRectF({-size.width() / 2, -size.height() / 2}, size)
        .adjusted(white, white, -white, -white);
}

}  // namespace kadrona::printing
