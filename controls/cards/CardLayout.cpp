#include "controls/cards/CardLayout.h"

#include <algorithm>
#include <limits>

namespace kadrona::controls {

CardLayout::CardLayout(int cardCount, int viewWidth, QSize smallest)
    : cardCount_(cardCount),
      columns_(std::max(1, (viewWidth - Gap) / (smallest.width() + Gap))),
      cardSize_(std::max(1, (viewWidth - Gap) / columns_ - Gap), smallest.height()) {}

int CardLayout::ContentHeight() const {
    const qint64 rows = (cardCount_ + columns_ - 1) / columns_;
    const qint64 height = rows * RowPitch() + Gap;
    return static_cast<int>(std::min<qint64>(height, std::numeric_limits<int>::max()));
}

QRect CardLayout::CardAt(int index) const {
    const int column = index % columns_;
    const int row = index / columns_;
    return {QPoint(Gap + column * (cardSize_.width() + Gap), Gap + row * RowPitch()), cardSize_};
}

CardLayout::Range CardLayout::CardsBetween(int top, int bottom) const {
    const int firstRow = std::max(0, (top - Gap) / RowPitch());
    const int endRow = bottom <= Gap ? 0 : (bottom - Gap - 1) / RowPitch() + 1;
    const int first = std::min(firstRow * columns_, cardCount_);
    return {first, std::clamp(endRow * columns_, first, cardCount_)};
}

int CardLayout::CardUnder(QPoint point) const {
    const Range row = CardsBetween(point.y(), point.y() + 1);
    for (int index = row.first; index < row.end; ++index) {
        if (CardAt(index).contains(point)) {
            return index;
        }
    }
    return -1;
}

}  // namespace kadrona::controls
