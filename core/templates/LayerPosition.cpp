#include "core/templates/LayerPosition.h"

#include <QStringBuilder>
#include <algorithm>
#include <limits>

namespace kadrona::core {

namespace {

/// dividend / divisor for dividend >= 0 and divisor > 0, halves to the even neighbour.
qint64 RoundedQuotient(qint64 dividend, qint64 divisor) {
    const qint64 quotient = dividend / divisor;
    const qint64 twiceRemainder = 2 * (dividend % divisor);
    const bool up = twiceRemainder > divisor || (twiceRemainder == divisor && quotient % 2 != 0);
    return up ? quotient + 1 : quotient;
}

/// Sides that a QRect starting at `start` can hold; a saved position is text that anyone can edit.
int RepresentableSide(qint64 side, int start) {
    constexpr qint64 Largest = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(side, start > 0 ? Largest - start : Largest));
}

/// QRect::width and height overflow where the corners lie more than an int apart.
qint64 WidthOf(const QRect& rectangle) {
    return qint64{rectangle.right()} - rectangle.left() + 1;
}

qint64 HeightOf(const QRect& rectangle) {
    return qint64{rectangle.bottom()} - rectangle.top() + 1;
}

/// Where one side of a layer comes to stand inside a photo's side.
qint64 KeptInside(qint64 start, qint64 length, qint64 photoLength) {
    const qint64 notNegative = std::max<qint64>(start, 0);
    return notNegative + length > photoLength ? photoLength - length : notNegative;
}

}  // namespace

QString LayerSection(const QString& templateName, QSize photo) {
    return templateName % u' ' % QString::number(photo.width()) % u'x' %
           QString::number(photo.height());
}

QRect RestoredLayerRectangle(const QRect& saved, QSize drawn, QSize templateCanvas) {
    qint64 width = drawn.width();
    qint64 height = drawn.height();
    if (WidthOf(saved) > 0 && HeightOf(saved) > 0 && !templateCanvas.isEmpty()) {
        width = WidthOf(saved);
        height = RoundedQuotient(templateCanvas.height() * width, templateCanvas.width());
    }
    return {saved.left(), saved.top(), RepresentableSide(width, saved.left()),
            RepresentableSide(height, saved.top())};
}

QRect KeptInsidePhoto(QRect layer, QSize photo) {
    layer.moveTo(static_cast<int>(KeptInside(layer.left(), layer.width(), photo.width())),
                 static_cast<int>(KeptInside(layer.top(), layer.height(), photo.height())));
    return layer;
}

}  // namespace kadrona::core
