#pragma once

#include <QFont>
#include <QStyledItemDelegate>

namespace kadrona::controls {

class CardModel;
struct LoadedCard;

/// Paints the cards of a grid, and tells in a tip what one has no room for:
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
class CardDelegate : public QStyledItemDelegate {
    Q_OBJECT

 public:
    /// `cards` outlives the delegate.
    CardDelegate(const CardModel& cards, QWidget* parent);

    void SetFont(const QFont& font);

    /// The height of an item and its least width; the items of a grid all have the size that is
    /// set. Both include half of the space between two cards on each side.
    QSize SmallestSize() const;
    void SetSize(QSize size) { size_ = size; }
    QSize Size() const { return size_; }
    /// The card in the rectangle of its item.
    static QRect CardIn(const QRect& item);

    /// The largest picture, which fits on the narrowest card, in logical pixels.
    static QSize PictureBox();

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                   const QModelIndex& /*index*/) const override {
        return size_;
    }
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

 private:
    static void PaintFrame(QPainter& painter, const QRect& area, QStyle::State state);
    void PaintContent(QPainter& painter, const QRect& inside, const LoadedCard& card) const;
    void PaintPicture(QPainter& painter, const QRect& box, const LoadedCard& card) const;
    void PaintFailure(QPainter& painter, const QRect& inside, const LoadedCard& card) const;
    bool IsCut(const LoadedCard& card, int cardWidth) const;
    QString TipOf(const LoadedCard& card, int cardWidth) const;

    const CardModel& cards_;
    QSize size_;
    QFont plain_;
    QFont bold_;
    QFont small_;
};

}  // namespace kadrona::controls
