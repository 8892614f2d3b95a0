#pragma once

#include <QRect>

namespace kadrona::controls {

/// Where the cards of a grid lie: rows from left to right and from top to bottom, the columns as
/// many as fit and together as wide as the view. A pure function of the sizes; `y` runs from the
/// first row's upper margin downwards, in logical pixels.
///
///     +--------------------------+
///     |  [ 0 ]   [ 1 ]   [ 2 ]   |
///     |  [ 3 ]   [ 4 ]           |
///     +--------------------------+
class CardLayout {
 public:
    /// Between the cards and around them, in pixels.
    static constexpr int Gap = 10;

    CardLayout() = default;
    /// `smallest` is a card's height and the least width of a column.
    CardLayout(int cardCount, int viewWidth, QSize smallest);

    int Columns() const { return columns_; }
    QSize CardSize() const { return cardSize_; }
    /// Distance from one row's top to the next one's.
    int RowPitch() const { return cardSize_.height() + Gap; }
    int ContentHeight() const;

    QRect CardAt(int index) const;

    struct Range {
        int first = 0;
        int end = 0;  ///< one behind the last
        bool operator==(const Range&) const = default;
    };
    /// The cards of all rows that lie at least partly in `top` up to and without `bottom`.
    Range CardsBetween(int top, int bottom) const;

    /// The card under a point; -1 where there is none.
    int CardUnder(QPoint point) const;

 private:
    int cardCount_ = 0;
    int columns_ = 1;
    QSize cardSize_;
};

}  // namespace kadrona::controls
