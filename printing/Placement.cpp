#include "printing/Placement.h"

namespace kadrona::printing {

QRectF CentredOnPaper(QSizeF paper, QSizeF picture) {
    return {QPointF((paper.width() - picture.width()) / 2, (paper.height() - picture.height()) / 2),
            picture};
}

}  // namespace kadrona::printing
