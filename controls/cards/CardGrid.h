#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <chrono>
#include <optional>
#include <vector>

#include "controls/cards/CardCache.h"
#include "controls/cards/CardLayout.h"
#include "controls/cards/CardPainter.h"
#include "controls/cards/SmoothScroll.h"

namespace kadrona::controls {

/// Any number of cards in rows, of which only the visible ones are read. One card is the current
/// one as long as there are any; arrows, Home, End and the page keys move it, Return and a double
/// click open it.
///
/// A frame takes no longer for reading than the loading budget: what did not come in time shows as
/// an empty frame and follows in the next one. So scrolling is smooth however slow the source is.
class CardGrid : public QAbstractScrollArea {
    Q_OBJECT

 public:
    explicit CardGrid(QWidget* parent = nullptr);

    /// The source outlives the grid or its next source; null for none. Whatever was read is
    /// forgotten.
    void SetSource(CardSource* source);

    /// What happens to the current card when other cards are shown.
    enum class Position {
        Start,  ///< the first card becomes current, at the top
        Keep    ///< the card stays current and visible if it is still among them
    };
    /// The keys of all cards in the order in which they stand, each only once.
    void SetCards(std::vector<qint64> keys, Position position);
    const std::vector<qint64>& Cards() const { return keys_; }

    /// Key of the current card; nothing when there are no cards.
    std::optional<qint64> Current() const;

    /// Reads a card anew when it is visible.
    void Reload(qint64 key);

    /// What stands in place of the cards when there are none. The hint may be empty.
    void SetEmptyText(const QString& heading, const QString& hint = {});
    const QString& EmptyHeading() const { return emptyHeading_; }

    /// At least one card is read in each frame.
    void SetLoadingBudget(std::chrono::microseconds budget) { budget_ = budget; }

    /// Where a card is shown, in pixels of the viewport; it may lie outside.
    QRect CardRectangle(int index) const;

 Q_SIGNALS:
    /// Another card is the current one, or none any more.
    void CurrentChanged();
    /// Double click or Return on a card. The event counts as handled.
    void CardOpened(qint64 key);

 protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

 private:
    void Arrange();
    void ArrangeAround(int anchor);
    void FitPictures();
    int Anchor() const;
    void SetCurrentIndex(int index);
    void EnsureVisible(int index);
    void SetHovered(int index);
    void UpdateCard(int index);
    void Describe();
    std::optional<int> KeyTarget(const QKeyEvent& event) const;
    CardLayout::Range VisibleCards() const;
    void PaintCards(QPainter& painter, const QRect& area);
    void PaintEmpty(QPainter& painter) const;
    QString TipOf(int index) const;
    int CardUnder(QPoint viewportPosition) const;

    std::vector<qint64> keys_;
    int current_ = -1;
    int hovered_ = -1;
    CardPainter painter_;
    CardLayout layout_;
    CardCache cache_;
    SmoothScroll scroll_;
    QBasicTimer remaining_;
    std::chrono::microseconds budget_{8000};
    QString emptyHeading_;
    QString emptyHint_;
};

}  // namespace kadrona::controls
