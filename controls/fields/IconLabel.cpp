#include "controls/fields/IconLabel.h"

#include <QPainter>
#include <utility>

namespace kadrona::controls {

IconLabel::IconLabel(QIcon icon, int side, QWidget* parent)
    : QWidget(parent), icon_(std::move(icon)) {
    setFixedSize(side, side);
}

void IconLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    icon_.paint(&painter, rect());
}

}  // namespace kadrona::controls
