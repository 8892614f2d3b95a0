#include "printing/PrintImage.h"

namespace kadrona::printing {

namespace {

constexpr double MillimetresPerInch = 25.4;

}  // namespace

QSizeF PrintImage::Millimetres() const {
    const QSizeF pixels =
        arrangement ? QSizeF(arrangement->size)
                    : QSizeF(double(tile.width()) * columns, double(tile.height()) * rows);
    return pixels * MillimetresPerInch / dotsPerInch;
}

QRectF PrintImage::PhotoMillimetres() const {
    const QSizeF size = Millimetres();
    if (arrangement) {
        QRectF photos;
        for (const QRectF& photo : CopyMillimetres()) {
            photos |= photo;
        }
        return photos;
    }
    const double white = GapMillimetres() / 2;
    return QRectF({-size.width() / 2, -size.height() / 2}, size)
        .adjusted(white, white, -white, -white);
}

std::vector<QRectF> PrintImage::CopyMillimetres() const {
    const QSizeF sheet = Millimetres();
    if (arrangement) {
        const double scale = MillimetresPerInch / dotsPerInch;
        std::vector<QRectF> photos;
        for (int i = 0; i < arrangement->photos; ++i) {
            const QRect photo =
                arrangement->RectangleOf(arrangement->placed.at(static_cast<size_t>(i)));
            photos.push_back(QRectF(QPointF(photo.topLeft()) * scale, QSizeF(photo.size()) * scale)
                                 .translated(-sheet.width() / 2, -sheet.height() / 2));
        }
        return photos;
    }
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
