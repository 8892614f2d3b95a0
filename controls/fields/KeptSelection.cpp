#include "controls/fields/KeptSelection.h"

#include <QListWidget>

namespace kadrona::controls {

void KeepSelection(QListWidget& list) {
    QObject::connect(&list, &QListWidget::itemSelectionChanged, &list, [&list] {
        QListWidgetItem* current = list.currentItem();
        if (current != nullptr && list.selectedItems().isEmpty()) {
            current->setSelected(true);
        }
    });
}

}  // namespace kadrona::controls
