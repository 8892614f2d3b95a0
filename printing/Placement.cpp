#include "printing/Placement.h"

namespace kadrona::printing {

QRectF CentredOnPaper(QSizeF paper, QSizeF picture) {
    return {QPointF((paper.width() - picture.width()) / 2, (paper.height() - picture.height()) / 2),
            picture};
}

bool FitsOnPaper(QSizeF paper, QSizeF picture) {
    constexpr double Tolerance = 0.05;
    return picture.width() <= paper.width() + Tolerance &&
           picture.height() <= paper.height() + Tolerance;
}

}  // namespace kadrona::printing
