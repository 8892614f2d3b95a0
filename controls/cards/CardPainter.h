#pragma once

#include <QFont>
#include <QSize>

class QPainter;
class QRect;

namespace kadrona::controls {

struct LoadedCard;

/// What else shows in a card.
struct CardState {
    bool current = false;
    bool focused = false;  ///< the grid has the focus
    bool hovered = false;
};

/// Paints the cards of a grid:
///
///     +----------------+
///     | heading        |
///     |   +--------+   |
///     |   |picture |   |
///     |   +--------+   |
///     | title          |
///     | detail         |
///     | text, on two   |
///     | lines          |
///     +----------------+
class CardPainter {
 public:
    explicit CardPainter(const QFont& font);

    /// A card's height and the least width that its picture and texts need.
    QSize SmallestSize() const;
    /// The largest picture, which fits on the narrowest card.
    static QSize PictureBox();

    /// `card` is null for one that is not loaded yet: an empty frame.
    void Paint(QPainter& painter, const QRect& area, const LoadedCard* card, CardState state) const;

    /// Whether the card's texts are longer than a card of that width shows.
    bool IsCut(const LoadedCard& card, int cardWidth) const;

 private:
    static void PaintFrame(QPainter& painter, const QRect& area, CardState state);
    void PaintContent(QPainter& painter, const QRect& inside, const LoadedCard& card) const;
    void PaintPicture(QPainter& painter, const QRect& box, const LoadedCard& card) const;
    static void PaintFailure(QPainter& painter, const QRect& inside, const LoadedCard& card);

    QFont plain_;
    QFont bold_;
    QFont small_;
};

}  // namespace kadrona::controls
