#include "controls/fields/WheelNeedsFocus.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>

namespace kadrona::controls {

namespace {

bool ChangesByTheWheel(const QWidget& widget) {
    return qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
           (qobject_cast<const QAbstractSlider*>(&widget) != nullptr &&
            qobject_cast<const QScrollBar*>(&widget) == nullptr);
}

bool LiesOnAPage(const QWidget& widget) {
    const QWidget* around = widget.parentWidget();
    while (around != nullptr && qobject_cast<const QScrollArea*>(around) == nullptr) {
        around = around->isWindow() ? nullptr : around->parentWidget();
    }
    return around != nullptr;
}

}  // namespace

bool WheelNeedsFocus::eventFilter(QObject* watched, QEvent* event) {
    const bool matters = event->type() == QEvent::Wheel || event->type() == QEvent::Polish;
    auto* widget = matters ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget == nullptr || !ChangesByTheWheel(*widget)) {
        return false;
    }
    if (event->type() == QEvent::Polish) {
        // Before the wheel is handed to a widget it would give it the focus.
        if (widget->focusPolicy() == Qt::WheelFocus) {
            widget->setFocusPolicy(Qt::StrongFocus);
        }
        return false;
    }
    if (widget->hasFocus() || !LiesOnAPage(*widget)) {
        return false;
    }
    event->ignore();  // the page takes it
    return true;
}

}  // namespace kadrona::controls
