#include "printing/PrinterLayer.h"

namespace kadrona::printing {

QSizeF PrintImage::Millimetres() const {
    constexpr double MillimetresPerInch = 25.4;
    const QSizeF pixels(double(tile.width()) * columns, double(tile.height()) * rows);
    return pixels * MillimetresPerInch / dotsPerInch;
}

}  // namespace kadrona::printing
