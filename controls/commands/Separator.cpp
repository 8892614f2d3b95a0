#include "controls/commands/Separator.h"

#include <QPainter>

#include "controls/theme/Theme.h"

namespace kadrona::controls {
namespace {

constexpr int Thickness = 9;
constexpr int EndGap = 4;

}  // namespace

Separator::Separator(Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), orientation_(orientation) {
    if (orientation == Qt::Vertical) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    } else {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
}

QSize Separator::sizeHint() const {
    return {Thickness, Thickness};
}

void Separator::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor color = Colors().border;
    if (orientation_ == Qt::Vertical) {
        painter.fillRect(width() / 2, EndGap, 1, height() - 2 * EndGap, color);
    } else {
        painter.fillRect(EndGap, height() / 2, width() - 2 * EndGap, 1, color);
    }
}

}  // namespace kadrona::controls
