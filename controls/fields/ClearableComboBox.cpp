#include "controls/fields/ClearableComboBox.h"

#include <QAbstractItemView>
#include <QKeyEvent>

namespace kadrona::controls {

ClearableComboBox::ClearableComboBox(const QString& hint, QWidget* parent) : QComboBox(parent) {
    setToolTip(hint);
    view()->installEventFilter(this);
}

void ClearableComboBox::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Delete)) {
        Clear();
        return;
    }
    QComboBox::keyPressEvent(event);
}

bool ClearableComboBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view() && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Delete)) {
        hidePopup();
        Clear();
        return true;
    }
    return QComboBox::eventFilter(watched, event);
}

void ClearableComboBox::Clear() {
    if (currentIndex() == -1) {
        return;
    }
    setCurrentIndex(-1);
    Q_EMIT activated(-1);
}

}  // namespace kadrona::controls
