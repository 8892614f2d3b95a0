#pragma once

#include <QListView>
#include <chrono>
#include <optional>
#include <vector>

#include "controls/cards/CardSource.h"

namespace kadrona::controls {

class CardDelegate;
class CardModel;

/// Any number of cards in rows, of which only the visible ones are read. One card is the current
/// one as long as there are any; arrows, Home, End and the page keys move it, Return and a double
/// click open it. Further ones are selected with Shift, Ctrl and Ctrl+A, as in any list. The
/// columns are as many as fit and together as wide as the view:
///
///     +--------------------------+
///     |  [ 0 ]   [ 1 ]   [ 2 ]   |
///     |  [ 3 ]   [ 4 ]           |
///     +--------------------------+
///
/// A frame takes no longer for reading than the loading budget: what did not come in time shows as
/// an empty frame and follows in the next one. So scrolling is smooth however slow the source is.
class CardGrid : public QListView {
    Q_OBJECT

 public:
    explicit CardGrid(QWidget* parent = nullptr);

    /// The source outlives the grid or its next source; null for none. Whatever was read is
    /// forgotten.
    void SetSource(CardSource* source);

    /// What happens to the current card when other cards are shown.
    enum class Position {
        Start,  ///< the first card becomes current, at the top
        Keep    ///< the card stays current and visible if it is still among them, else its place
    };
    /// The keys of all cards in the order in which they stand, each only once.
    void SetCards(std::vector<qint64> keys, Position position);
    const std::vector<qint64>& Cards() const;

    /// Key of the current card; nothing when there are no cards.
    std::optional<qint64> Current() const;

    /// Keys of the selected cards in the order in which they stand; the current card is one of them
    /// unless the user took it out.
    std::vector<qint64> Selected() const;

    /// The picture on a card; null where it has none.
    QPixmap Picture(qint64 key);

    /// Reads a card anew when it is visible.
    void Reload(qint64 key);
    void ReloadAll();

    /// What stands in place of the cards when there are none. The hint may be empty.
    void SetEmptyText(const QString& heading, const QString& hint = {});
    const QString& EmptyHeading() const { return emptyHeading_; }

    /// At least one card is read in each frame.
    void SetLoadingBudget(std::chrono::microseconds budget) { budget_ = budget; }

    /// Where a card is shown, in pixels of the viewport; it may lie outside. The space between two
    /// cards belongs to them half and half.
    QRect CardRectangle(int index) const;

    /// Does nothing: it would read the whole archive for the card whose text begins with a letter.
    void keyboardSearch(const QString& /*search*/) override {}

 Q_SIGNALS:
    /// Another card is the current one, or none any more.
    void CurrentChanged();
    /// Other cards are selected, or none any more.
    void SelectionChanged();
    /// Double click or Return on a card. The event counts as handled.
    void CardOpened(qint64 key);

 protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void SelectAgain(std::vector<qint64> keys);
    void FitCards();
    void FitAround();
    void PaintEmpty();

    CardModel* cards_;
    CardDelegate* delegate_;
    int columns_ = 1;
    std::chrono::microseconds budget_{8000};
    QString emptyHeading_;
    QString emptyHint_;
};

}  // namespace kadrona::controls
