#include "controls/commands/MenuRow.h"

#include <QAction>
#include <QPainter>
#include <QStyle>

#include "controls/commands/ScreenTip.h"
#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

constexpr int RowPadding = 10;
constexpr int IconSide = 22;
constexpr int IconGap = 10;
constexpr int ShortcutGap = 32;
constexpr int RowHeight = 38;

QString ShortcutText(const QAction& action) {
    return action.shortcut().toString(QKeySequence::NativeText);
}

}  // namespace

MenuRow::MenuRow(QAction* action, QWidget* parent) : QAbstractButton(parent), action_(action) {
    setObjectName(action->objectName() + u"MenuItem"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    connect(action, &QAction::changed, this, &MenuRow::Follow);
    Follow();
}

void MenuRow::Follow() {
    setText(action_->text());
    setShortcut({});  // a mnemonic is the matter of the pop-up, in which it needs no Alt
    setIcon(action_->icon());
    setToolTip(ScreenTipOf(*action_));
    setAccessibleDescription(action_->toolTip());
    setEnabled(action_->isEnabled());
    setVisible(action_->isVisible());
    updateGeometry();
    update();
}

QSize MenuRow::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const QString keys = ShortcutText(*action_);
    const int keysWidth = keys.isEmpty() ? 0 : ShortcutGap + metrics.horizontalAdvance(keys);
    const int captionWidth = metrics.size(Qt::TextShowMnemonic, text()).width();
    return {2 * RowPadding + IconSide + IconGap + captionWidth + keysWidth,
            std::max(RowHeight, metrics.height() + 14)};
}

void MenuRow::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    setFocus(Qt::MouseFocusReason);
}

void MenuRow::focusInEvent(QFocusEvent* event) {
    QAbstractButton::focusInEvent(event);
    update();
}

void MenuRow::focusOutEvent(QFocusEvent* event) {
    QAbstractButton::focusOutEvent(event);
    update();
}

void MenuRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (isEnabled() && (hasFocus() || isDown())) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? Colors().accentWash : Colors().accentTint);
        painter.drawRoundedRect(rect(), 4, 4);
    }
    const QRect iconArea(RowPadding, (height() - IconSide) / 2, IconSide, IconSide);
    icon().paint(&painter, iconArea, Qt::AlignCenter,
                 isEnabled() ? QIcon::Normal : QIcon::Disabled);
    const QRect textArea = rect().adjusted(RowPadding + IconSide + IconGap, 0, -RowPadding, 0);
    style()->drawItemText(&painter, textArea,
                          Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(),
                          isEnabled(), text(), QPalette::WindowText);
    painter.setPen(isEnabled() ? Colors().mutedText : Colors().disabledText);
    painter.drawText(textArea, Qt::AlignRight | Qt::AlignVCenter, ShortcutText(*action_));
}

}  // namespace kadrona::controls
