#include "controls/cards/CardGrid.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>

#include "controls/cards/CardDelegate.h"
#include "controls/cards/CardModel.h"
#include "controls/theme/Theme.h"

namespace kadrona::controls {

CardGrid::CardGrid(QWidget* parent)
    : QListView(parent), cards_(new CardModel(this)), delegate_(new CardDelegate(*cards_, this)) {
    setFrameShape(QFrame::NoFrame);
    setFlow(LeftToRight);
    setWrapping(true);
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAttribute(Qt::WA_Hover);
    // Every pixel is painted, which lets the viewport scroll by copying.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    setModel(cards_);
    setItemDelegate(delegate_);
    FitCards();
    connect(this, &QListView::activated, this,
            [this](const QModelIndex& index) { Q_EMIT CardOpened(cards_->KeyOf(index)); });
}

void CardGrid::SetSource(CardSource* source) {
    cards_->SetSource(source);
}

void CardGrid::SetCards(std::vector<qint64> keys, Position position) {
    const auto kept = position == Position::Keep ? Current() : std::nullopt;
    const int rowBefore = kept ? currentIndex().row() : 0;
    std::vector<qint64> selected = kept ? Selected() : std::vector<qint64>();
    cards_->SetKeys(std::move(keys));
    if (cards_->Keys().empty()) {
        Q_EMIT CurrentChanged();
        Q_EMIT SelectionChanged();
        return;
    }
    const QModelIndex found = kept ? cards_->IndexOf(*kept) : QModelIndex();
    setCurrentIndex(found.isValid() ? found
                                    : cards_->index(std::min(rowBefore, cards_->rowCount() - 1)));
    SelectAgain(std::move(selected));
    if (currentIndex().row() == 0) {
        scrollToTop();
    }
}

/// Those that are still there, where there were several.
void CardGrid::SelectAgain(std::vector<qint64> keys) {
    if (keys.size() < 2) {
        return;
    }
    std::ranges::sort(keys);
    QItemSelection selection;
    for (int row = 0; row < cards_->rowCount(); ++row) {
        const int first = row;
        while (row < cards_->rowCount() &&
               std::ranges::binary_search(keys, cards_->Keys()[static_cast<size_t>(row)])) {
            ++row;
        }
        if (row > first) {
            selection.select(cards_->index(first), cards_->index(row - 1));
        }
    }
    if (selection.isEmpty()) {
        return;
    }
    if (!selection.contains(currentIndex())) {
        setCurrentIndex(selection.front().topLeft());
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

const std::vector<qint64>& CardGrid::Cards() const {
    return cards_->Keys();
}

std::optional<qint64> CardGrid::Current() const {
    return currentIndex().isValid() ? std::optional(cards_->KeyOf(currentIndex())) : std::nullopt;
}

std::vector<qint64> CardGrid::Selected() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::ranges::sort(rows);
    std::vector<qint64> keys;
    keys.reserve(rows.size());
    for (const int row : rows) {
        keys.push_back(cards_->Keys()[static_cast<size_t>(row)]);
    }
    return keys;
}

QPixmap CardGrid::Picture(qint64 key) {
    return cards_->Cache().Load(key).picture;
}

void CardGrid::Reload(qint64 key) {
    cards_->Reload(key);
}

void CardGrid::ReloadAll() {
    cards_->ReloadAll();
    viewport()->update();
}

void CardGrid::SetEmptyText(const QString& heading, const QString& hint) {
    emptyHeading_ = heading;
    emptyHint_ = hint;
    viewport()->update();
    setAccessibleDescription(cards_->Keys().empty() ? heading : QString());
}

QRect CardGrid::CardRectangle(int index) const {
    return CardDelegate::CardIn(visualRect(cards_->index(index)));
}

void CardGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    Q_EMIT CurrentChanged();
}

void CardGrid::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QListView::selectionChanged(selected, deselected);
    Q_EMIT SelectionChanged();
}

/// The toolkit's own would look for a card at the place where the key leads to: right and left
/// would end with the row, down above the gap in the last row, and a page is a row too short.
QModelIndex CardGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/) {
    const int current = currentIndex().row();
    if (current < 0) {
        return {};
    }
    const int last = cards_->rowCount() - 1;
    const int page = std::max(1, viewport()->height() / delegate_->Size().height()) * columns_;
    const auto up = [&](int cards) {
        return current < cards ? current % columns_ : current - cards;
    };
    const auto down = [&](int cards) {
        return current / columns_ == last / columns_ ? current : std::min(last, current + cards);
    };
    switch (action) {
        case MoveUp:
            return cards_->index(up(columns_));
        case MoveDown:
            return cards_->index(down(columns_));
        case MovePageUp:
            return cards_->index(up(page));
        case MovePageDown:
            return cards_->index(std::min(last, current + page));
        case MoveLeft:
        case MovePrevious:
            return cards_->index(std::max(0, current - 1));
        case MoveRight:
        case MoveNext:
            return cards_->index(std::min(last, current + 1));
        case MoveHome:
            return cards_->index(0);
        case MoveEnd:
            return cards_->index(last);
    }
    return {};
}

/// Gives the cards the size that fills the width that the viewport has now.
void CardGrid::FitCards() {
    constexpr int NotchesOfARow = 2;
    constexpr int StepsOfANotch = 3;
    const QSize smallest = delegate_->SmallestSize();
    // The view breaks a row that ends on the last pixel.
    constexpr int Rest = 2;
    const int width =
        maximumViewportSize().width() - Rest -
        style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, verticalScrollBar());
    columns_ = std::max(1, width / smallest.width());
    delegate_->SetSize({std::max(1, width / columns_), smallest.height()});
    verticalScrollBar()->setSingleStep(smallest.height() / NotchesOfARow / StepsOfANotch);
    constexpr int Screens = 3;
    constexpr int LeastCapacity = 120;
    const int visible = (viewport()->height() / smallest.height() + 2) * columns_;
    cards_->Cache().SetCapacity(std::max(LeastCapacity, Screens * visible));
    doItemsLayout();
}

/// The same around a card that stays where it is: the current one, or the first visible one.
void CardGrid::FitAround() {
    const bool currentShows = visualRect(currentIndex()).intersects(viewport()->rect());
    const QModelIndex anchor = currentShows ? currentIndex() : indexAt({0, 0});
    const int offset = visualRect(anchor).top();
    FitCards();
    if (anchor.isValid()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + visualRect(anchor).top() -
                                      offset);
    }
}

void CardGrid::resizeEvent(QResizeEvent* event) {
    FitAround();
    QListView::resizeEvent(event);
}

void CardGrid::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        delegate_->SetFont(font());
        FitAround();
    }
}

void CardGrid::paintEvent(QPaintEvent* event) {
    QPainter(viewport()).fillRect(event->rect(), Colors().window);
    if (cards_->Keys().empty()) {
        PaintEmpty();
        return;
    }
    // The window may have come to another screen.
    cards_->Cache().SetPictureBox(CardDelegate::PictureBox(), devicePixelRatioF());
    cards_->StartFrame(budget_);
    QListView::paintEvent(event);
    if (cards_->IsFrameIncomplete()) {
        QTimer::singleShot(0, viewport(), qOverload<>(&QWidget::update));
    }
}

void CardGrid::PaintEmpty() {
    QPainter painter(viewport());
    const QRect room = viewport()->rect().adjusted(40, 0, -40, -viewport()->height() / 5);
    QFont heading = font();
    heading.setPointSizeF(heading.pointSizeF() * 1.3);
    painter.setFont(heading);
    painter.setPen(Colors().text);
    QRect used;
    painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, emptyHeading_, &used);
    painter.setFont(font());
    painter.setPen(Colors().mutedText);
    const QRect below(room.x(), used.bottom() + 12, room.width(), viewport()->height());
    painter.drawText(below, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyHint_);
}

}  // namespace kadrona::controls
