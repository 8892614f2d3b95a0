#include "controls/cards/CardGrid.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

CardGrid::CardGrid(QWidget* parent)
    : QAbstractScrollArea(parent), painter_(font()), scroll_(*verticalScrollBar()) {
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setMouseTracking(true);
    // Every pixel is painted, which lets the viewport scroll by copying.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    verticalScrollBar()->setSingleStep(40);
}

void CardGrid::SetSource(CardSource* source) {
    cache_.SetSource(source);
    viewport()->update();
}

void CardGrid::SetCards(std::vector<qint64> keys, Position position) {
    const auto kept = position == Position::Keep ? Current() : std::nullopt;
    keys_ = std::move(keys);
    scroll_.Stop();
    hovered_ = -1;
    current_ = keys_.empty() ? -1 : 0;
    if (kept) {
        const auto found = std::ranges::find(keys_, *kept);
        current_ = found == keys_.end() ? current_ : static_cast<int>(found - keys_.begin());
    }
    Arrange();
    if (current_ > 0) {
        EnsureVisible(current_);
    } else {
        verticalScrollBar()->setValue(0);
    }
    viewport()->update();
    Describe();
    Q_EMIT CurrentChanged();
}

std::optional<qint64> CardGrid::Current() const {
    return current_ < 0 ? std::nullopt : std::optional(keys_[static_cast<size_t>(current_)]);
}

void CardGrid::Reload(qint64 key) {
    cache_.Forget(key);
    viewport()->update();
    Describe();
}

void CardGrid::SetEmptyText(const QString& heading, const QString& hint) {
    emptyHeading_ = heading;
    emptyHint_ = hint;
    viewport()->update();
    Describe();
}

QRect CardGrid::CardRectangle(int index) const {
    return layout_.CardAt(index).translated(0, -verticalScrollBar()->value());
}

CardLayout::Range CardGrid::VisibleCards() const {
    const int top = verticalScrollBar()->value();
    return layout_.CardsBetween(top, top + viewport()->height());
}

int CardGrid::CardUnder(QPoint viewportPosition) const {
    return layout_.CardUnder(viewportPosition + QPoint(0, verticalScrollBar()->value()));
}

/// Lays the cards out for the size that the viewport has now.
void CardGrid::Arrange() {
    layout_ =
        CardLayout(static_cast<int>(keys_.size()), viewport()->width(), painter_.SmallestSize());
    const int height = viewport()->height();
    verticalScrollBar()->setPageStep(height);
    verticalScrollBar()->setRange(0, std::max(0, layout_.ContentHeight() - height));
    FitPictures();
    constexpr int Screens = 3;
    constexpr int LeastCapacity = 120;
    const int visible = (height / layout_.RowPitch() + 2) * layout_.Columns();
    cache_.SetCapacity(std::max(LeastCapacity, Screens * visible));
    viewport()->update();
}

void CardGrid::FitPictures() {
    cache_.SetPictureBox(CardPainter::PictureBox(), devicePixelRatioF());
}

/// The card that stays where it is when the grid changes its shape.
int CardGrid::Anchor() const {
    const CardLayout::Range visible = VisibleCards();
    return current_ >= visible.first && current_ < visible.end ? current_ : visible.first;
}

void CardGrid::ArrangeAround(int anchor) {
    const int offset = CardRectangle(anchor).top();
    Arrange();
    verticalScrollBar()->setValue(layout_.CardAt(anchor).top() - offset);
}

void CardGrid::resizeEvent(QResizeEvent* /*event*/) {
    scroll_.Stop();
    ArrangeAround(Anchor());
}

void CardGrid::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        painter_ = CardPainter(font());
        ArrangeAround(Anchor());
    }
}

void CardGrid::scrollContentsBy(int /*dx*/, int dy) {
    SetHovered(-1);
    viewport()->scroll(0, dy);
}

void CardGrid::SetCurrentIndex(int index) {
    if (index != current_) {
        UpdateCard(current_);
        UpdateCard(index);
        current_ = index;
        Describe();
        Q_EMIT CurrentChanged();
    }
    EnsureVisible(index);
}

void CardGrid::EnsureVisible(int index) {
    scroll_.Stop();
    const QRect card = layout_.CardAt(index);
    QScrollBar* bar = verticalScrollBar();
    const int lowest = card.top() - CardLayout::Gap;
    const int highest = card.bottom() + 1 + CardLayout::Gap - viewport()->height();
    // A card that is higher than the view shows its top.
    bar->setValue(std::min(std::max(bar->value(), highest), lowest));
}

void CardGrid::SetHovered(int index) {
    if (index != hovered_) {
        UpdateCard(hovered_);
        UpdateCard(index);
        hovered_ = index;
    }
}

void CardGrid::UpdateCard(int index) {
    if (index >= 0) {
        viewport()->update(CardRectangle(index));
    }
}

/// Tells assistive technology what the current card says.
void CardGrid::Describe() {
    if (keys_.empty()) {
        setAccessibleDescription(emptyHeading_);
        return;
    }
    const LoadedCard& loaded = cache_.Load(*Current());
    const Card& card = loaded.card;
    setAccessibleDescription(
        loaded.failure.isEmpty()
            ? QStringList{card.title, card.heading, card.detail, card.text}.join(u", "_s)
            : loaded.failure);
}

std::optional<int> CardGrid::KeyTarget(const QKeyEvent& event) const {
    const int last = static_cast<int>(keys_.size()) - 1;
    const int columns = layout_.Columns();
    const int page = std::max(1, viewport()->height() / layout_.RowPitch()) * columns;
    switch (event.key()) {
        case Qt::Key_Left:
            return std::max(0, current_ - 1);
        case Qt::Key_Right:
            return std::min(last, current_ + 1);
        case Qt::Key_Up:
            return current_ < columns ? current_ : current_ - columns;
        case Qt::Key_Down:
            // From above the gap in the last row to the last card.
            return current_ / columns == last / columns ? current_
                                                        : std::min(last, current_ + columns);
        case Qt::Key_PageUp:
            return current_ < page ? current_ % columns : current_ - page;
        case Qt::Key_PageDown:
            return std::min(last, current_ + page);
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return current_;
        default:
            return std::nullopt;
    }
}

void CardGrid::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier || modifiers == Qt::ControlModifier;
    const auto target = current_ >= 0 && plain ? KeyTarget(*event) : std::nullopt;
    const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    event->setAccepted(target.has_value());
    if (!target) {
        return;
    }
    SetCurrentIndex(*target);
    if (opens) {
        Q_EMIT CardOpened(*Current());
    }
}

void CardGrid::mousePressEvent(QMouseEvent* event) {
    const int index = CardUnder(event->position().toPoint());
    if (index >= 0) {
        SetCurrentIndex(index);
    }
}

void CardGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    const int index = CardUnder(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index >= 0) {
        event->accept();
        SetCurrentIndex(index);
        Q_EMIT CardOpened(*Current());
    }
}

void CardGrid::mouseMoveEvent(QMouseEvent* event) {
    SetHovered(CardUnder(event->position().toPoint()));
}

void CardGrid::wheelEvent(QWheelEvent* event) {
    if (!scroll_.Turn(*event, layout_.RowPitch() / 2)) {
        QAbstractScrollArea::wheelEvent(event);
    }
}

void CardGrid::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    UpdateCard(current_);
}

void CardGrid::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    UpdateCard(current_);
}

bool CardGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) {
        SetHovered(-1);
    } else if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = CardUnder(help->pos());
        const QString tip = index < 0 ? QString() : TipOf(index);
        QToolTip::showText(help->globalPos(), tip, viewport(),
                           index < 0 ? QRect() : CardRectangle(index));
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

/// What the card has no room for.
QString CardGrid::TipOf(int index) const {
    const LoadedCard* loaded = cache_.Find(keys_[static_cast<size_t>(index)]);
    if (loaded == nullptr) {
        return {};
    }
    if (!loaded->failure.isEmpty()) {
        return u"<p>%1</p>"_s.arg(loaded->failure.toHtmlEscaped());
    }
    if (!painter_.IsCut(*loaded, layout_.CardSize().width())) {
        return {};
    }
    return u"<p><b>%1</b><br>%2</p><p>%3</p>"_s.arg(loaded->card.title.toHtmlEscaped(),
                                                    loaded->card.detail.toHtmlEscaped(),
                                                    loaded->card.text.toHtmlEscaped());
}

void CardGrid::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), Colors().window);
    if (keys_.empty()) {
        PaintEmpty(painter);
    } else {
        PaintCards(painter, event->rect());
    }
}

void CardGrid::PaintCards(QPainter& painter, const QRect& area) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + budget_;
    FitPictures();  // the window may have come to another screen
    const int top = verticalScrollBar()->value();
    const CardLayout::Range range = layout_.CardsBetween(top + area.top(), top + area.bottom() + 1);
    bool mayLoad = true;
    bool missing = false;
    for (int index = range.first; index < range.end; ++index) {
        const QRect card = CardRectangle(index);
        if (!card.intersects(area)) {
            continue;
        }
        const qint64 key = keys_[static_cast<size_t>(index)];
        const LoadedCard* loaded = cache_.Find(key);
        if (loaded == nullptr && mayLoad) {
            loaded = &cache_.Load(key);
            mayLoad = Clock::now() < deadline;
        }
        missing = missing || loaded == nullptr;
        painter_.Paint(
            painter, card, loaded,
            {.current = index == current_, .focused = hasFocus(), .hovered = index == hovered_});
    }
    if (missing) {
        remaining_.start(0, this);
    }
}

/// The next frame: the visible cards that the last one had no time to read.
void CardGrid::timerEvent(QTimerEvent* event) {
    if (event->timerId() != remaining_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    remaining_.stop();
    const CardLayout::Range visible = VisibleCards();
    for (int index = visible.first; index < visible.end; ++index) {
        if (cache_.Find(keys_[static_cast<size_t>(index)]) == nullptr) {
            UpdateCard(index);
        }
    }
}

void CardGrid::PaintEmpty(QPainter& painter) const {
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
