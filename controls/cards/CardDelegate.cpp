#include "controls/cards/CardDelegate.h"

#include <QAbstractItemView>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStringList>
#include <QTextLayout>
#include <QToolTip>

#include "controls/cards/CardModel.h"
#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

constexpr int CardGap = 10;  // between two cards
constexpr int CardPadding = 10;
constexpr int PictureSpacing = 6;  // around the picture
constexpr int PictureHeight = 180;
constexpr int LeastCardWidth = 180;
constexpr int TextLines = 2;
constexpr double Radius = 5;

/// The text broken into at most `count` lines of that width, the last one cut with an ellipsis.
QStringList WrappedLines(const QString& text, const QFont& font, int width, int count) {
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    const QFontMetrics metrics(font);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == count) {
            lines += metrics.elidedText(text.mid(line.textStart()), Qt::ElideRight, width);
            break;
        }
        lines += text.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

/// Paints one line at the top of `rest` and takes it off.
void PaintLine(QPainter& painter, QRect& rest, const QString& text, const QFont& font,
               const QColor& color, Qt::TextElideMode cut = Qt::ElideRight) {
    const QFontMetrics metrics(font);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(rest.x(), rest.y() + metrics.ascent(),
                     metrics.elidedText(text, cut, rest.width()));
    rest.setTop(rest.top() + metrics.height());
}

}  // namespace

CardDelegate::CardDelegate(const CardModel& cards, QWidget* parent)
    : QStyledItemDelegate(parent), cards_(cards) {
    SetFont(parent->font());
}

void CardDelegate::SetFont(const QFont& font) {
    plain_ = bold_ = small_ = font;
    bold_.setWeight(QFont::DemiBold);
    small_.setPointSizeF(font.pointSizeF() * 0.9);
}

QSize CardDelegate::SmallestSize() const {
    const int small = QFontMetrics(small_).height();
    const int texts = 2 * small + QFontMetrics(bold_).height() +
                      TextLines * QFontMetrics(plain_).height() + PictureSpacing / 2;
    return {CardGap + LeastCardWidth,
            CardGap + 2 * CardPadding + PictureHeight + 2 * PictureSpacing + texts};
}

QRect CardDelegate::CardIn(const QRect& item) {
    return item.adjusted(CardGap / 2, CardGap / 2, -CardGap / 2, -CardGap / 2);
}

QSize CardDelegate::PictureBox() {
    return {LeastCardWidth - 2 * CardPadding, PictureHeight};
}

/// A card that is not read yet is an empty frame.
void CardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QRect area = CardIn(option.rect);
    const LoadedCard* card = cards_.Painted(index);
    PaintFrame(*painter, area, option.state);
    if (card == nullptr) {
        return;
    }
    const QRect inside = area.adjusted(CardPadding, CardPadding, -CardPadding, -CardPadding);
    if (card->failure.isEmpty()) {
        PaintContent(*painter, inside, *card);
    } else {
        PaintFailure(*painter, inside, *card);
    }
}

void CardDelegate::PaintFrame(QPainter& painter, const QRect& area, QStyle::State state) {
    const ThemeColors& colors = Colors();
    const bool current = state.testFlag(QStyle::State_Selected);
    const bool hovered = state.testFlag(QStyle::State_MouseOver);
    const double width = current ? 2 : 1;
    QColor border = hovered ? colors.strongBorder : colors.border;
    if (current) {
        border = state.testFlag(QStyle::State_HasFocus) ? colors.accent : colors.strongBorder;
    }
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(border, width));
    // What is under the mouse must not look selected where several are.
    painter.setBrush(current ? colors.accentTint : colors.content);
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF(area).adjusted(inset, inset, -inset, -inset), Radius, Radius);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void CardDelegate::PaintContent(QPainter& painter, const QRect& inside,
                                const LoadedCard& card) const {
    const ThemeColors& colors = Colors();
    QRect rest = inside;
    PaintLine(painter, rest, card.card.heading, small_, colors.mutedText);
    const QRect box(rest.x(), rest.y() + PictureSpacing, rest.width(), PictureHeight);
    PaintPicture(painter, box, card);
    rest.setTop(box.bottom() + 1 + PictureSpacing);
    PaintLine(painter, rest, card.card.title, bold_, colors.text, Qt::ElideMiddle);
    PaintLine(painter, rest, card.card.detail, small_, colors.mutedText, Qt::ElideMiddle);
    rest.setTop(rest.top() + PictureSpacing / 2);
    for (const QString& line : WrappedLines(card.card.text, plain_, rest.width(), TextLines)) {
        PaintLine(painter, rest, line, plain_, colors.text);
    }
}

void CardDelegate::PaintPicture(QPainter& painter, const QRect& box, const LoadedCard& card) const {
    if (card.picture.isNull()) {
        painter.fillRect(box, Colors().window);
        painter.setFont(small_);
        painter.setPen(Colors().mutedText);
        painter.drawText(box, Qt::AlignCenter, u"Kein Vorschaubild"_s);
        return;
    }
    QRect picture(QPoint(), card.picture.deviceIndependentSize().toSize());
    picture.moveCenter(box.center());
    painter.drawPixmap(picture.topLeft(), card.picture);
    // A white passport photo would have no edge on the white card.
    painter.setPen(Colors().border);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(picture.adjusted(0, 0, -1, -1));
}

void CardDelegate::PaintFailure(QPainter& painter, const QRect& inside,
                                const LoadedCard& card) const {
    painter.setFont(plain_);
    painter.setPen(Colors().mutedText);
    painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap,
                     u"Dieser Eintrag kann nicht gelesen werden.\n\n"_s + card.failure.left(200));
}

bool CardDelegate::IsCut(const LoadedCard& card, int cardWidth) const {
    const int width = cardWidth - 2 * CardPadding;
    const auto fits = [width](const QString& text, const QFont& font) {
        return QFontMetrics(font).horizontalAdvance(text) <= width;
    };
    const QStringList lines = WrappedLines(card.card.text, plain_, width, TextLines + 1);
    return lines.size() > TextLines || !fits(card.card.title, bold_) ||
           !fits(card.card.detail, small_);
}

/// What the card has no room for.
QString CardDelegate::TipOf(const LoadedCard& card, int cardWidth) const {
    if (!card.failure.isEmpty()) {
        return u"<p>%1</p>"_s.arg(card.failure.toHtmlEscaped());
    }
    if (!IsCut(card, cardWidth)) {
        return {};
    }
    return u"<p><b>%1</b><br>%2</p><p>%3</p>"_s.arg(card.card.title.toHtmlEscaped(),
                                                    card.card.detail.toHtmlEscaped(),
                                                    card.card.text.toHtmlEscaped());
}

bool CardDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const QRect area = CardIn(option.rect);
    const LoadedCard* card = cards_.Painted(index);
    QToolTip::showText(event->globalPos(), card != nullptr ? TipOf(*card, area.width()) : QString(),
                       view->viewport(), area);
    return true;
}

}  // namespace kadrona::controls
