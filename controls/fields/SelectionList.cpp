#include "controls/fields/SelectionList.h"

namespace kadrona::controls {

SelectionList::SelectionList(const QString& name, const QString& accessibleName, QWidget* parent)
    : QListWidget(parent) {
    setObjectName(name);
    setAccessibleName(accessibleName);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(
        this, &QListWidget::currentRowChanged, this,
        [this] {
            if (SelectedRow() < 0) {
                selectionModel()->clearCurrentIndex();
            }
        },
        Qt::QueuedConnection);
}

void SelectionList::SetTexts(const QStringList& texts) {
    clear();
    for (const QString& text : texts) {
        AddText(text);
    }
}

void SelectionList::AddText(const QString& text) {
    auto* item = new QListWidgetItem(text, this);
    item->setToolTip(text);
}

int SelectionList::SelectedRow() const {
    const auto selected = selectedItems();
    return selected.isEmpty() ? -1 : row(selected.first());
}

void SelectionList::SelectRow(int row) {
    setCurrentRow(row < count() ? row : -1);
}

QString SelectionList::SelectedText() const {
    const auto selected = selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

}  // namespace kadrona::controls
