#include "controls/fields/IconLabel.h"

#include <QPainter>

namespace kadrona::controls {

IconLabel::IconLabel(const QIcon& icon, int side, QWidget* parent) : QWidget(parent), icon_(icon) {
    setFixedSize(side, side);
}

void IconLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    icon_.paint(&painter, rect());
}

}  // namespace kadrona::controls
