#pragma once

#include <QRectF>
#include <QSizeF>

/// Where a picture lies on paper; all lengths in millimetres, the origin at the paper's top left.
namespace kadrona::printing {

/// The picture in its own size, centred on the paper. It lies beyond the paper's edges, at a
/// negative position, where it is larger.
QRectF CentredOnPaper(QSizeF paper, QSizeF picture);

}  // namespace kadrona::printing
