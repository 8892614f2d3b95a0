#include "controls/fields/WrappingCheckBox.h"

#include <QStyleOptionButton>
#include <QStylePainter>
#include <utility>

namespace kadrona::controls {

namespace {

constexpr int TextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextShowMnemonic;

}  // namespace

WrappingCheckBox::WrappingCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent) {
    QSizePolicy policy = sizePolicy();
    policy.setHorizontalPolicy(QSizePolicy::Preferred);
    policy.setVerticalPolicy(QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize WrappingCheckBox::minimumSizeHint() const {
    constexpr int LeastWidth = 200;
    return sizeHint().boundedTo(QSize(LeastWidth, QWIDGETSIZE_MAX));
}

int WrappingCheckBox::heightForWidth(int width) const {
    const QSize line = sizeHint();
    return width >= line.width()
               ? line.height()
               : line.height() - fontMetrics().lineSpacing() + TextRectangle(width).height();
}

/// The first line stands where a single one would.
QRect WrappingCheckBox::TextRectangle(int width) const {
    QStyleOptionButton option;
    initStyleOption(&option);
    const int left = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this).left();
    const int top = (sizeHint().height() - fontMetrics().lineSpacing()) / 2;
    return fontMetrics().boundingRect(QRect(left, top, width - left, QWIDGETSIZE_MAX), TextFlags,
                                      text());
}

void WrappingCheckBox::paintEvent(QPaintEvent* event) {
    if (width() >= sizeHint().width()) {
        QCheckBox::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QString text = std::exchange(option.text, {});
    option.rect.setHeight(sizeHint().height());
    painter.drawControl(QStyle::CE_CheckBox, option);
    painter.drawItemText(TextRectangle(width()), TextFlags, palette(), isEnabled(), text,
                         QPalette::WindowText);
}

/// Every line can be clicked.
bool WrappingCheckBox::hitButton(const QPoint& place) const {
    return width() >= sizeHint().width() ? QCheckBox::hitButton(place) : rect().contains(place);
}

}  // namespace kadrona::controls
