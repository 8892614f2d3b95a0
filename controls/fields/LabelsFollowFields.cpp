#include "controls/fields/LabelsFollowFields.h"

#include <QAbstractButton>
#include <QEvent>
#include <QLabel>

namespace kadrona::controls {

namespace {

/// What lies above both is told to both; only a state of the field's own is handed on.
void Follow(QLabel& label) {
    const QWidget& field = *label.buddy();
    label.setEnabled(field.isEnabledTo(field.window()));
}

}  // namespace

bool LabelsFollowFields::eventFilter(QObject* watched, QEvent* event) {
    const bool changes = event->type() == QEvent::EnabledChange;
    const bool appears = event->type() == QEvent::Polish;
    auto* widget = changes || appears ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget == nullptr) {
        return false;
    }
    // Buttons change the most often and bear their captions themselves.
    auto* label = qobject_cast<QLabel*>(widget);
    if (appears && label != nullptr && label->buddy() != nullptr) {
        Follow(*label);
    } else if (changes && label == nullptr && qobject_cast<QAbstractButton*>(widget) == nullptr) {
        for (QLabel* of : widget->window()->findChildren<QLabel*>()) {
            if (of->buddy() == widget) {
                Follow(*of);
            }
        }
    }
    return false;
}

}  // namespace kadrona::controls
