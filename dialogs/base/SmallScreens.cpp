#include "dialogs/base/SmallScreens.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialogs/base/ScrolledPage.h"
#include "dialogs/base/WindowPlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// What the window cannot be smaller than, by its contents.
QSize NeededSize(const QLayout& layout) {
    return layout.sizeConstraint() == QLayout::SetFixedSize ? layout.totalSizeHint()
                                                            : layout.totalMinimumSize();
}

bool HoldsButtons(QLayoutItem& item) {
    if (QLayout* row = item.layout()) {
        for (int i = 0; i < row->count(); ++i) {
            if (HoldsButtons(*row->itemAt(i))) {
                return true;
            }
        }
    }
    return qobject_cast<QPushButton*>(item.widget()) != nullptr ||
           qobject_cast<QDialogButtonBox*>(item.widget()) != nullptr;
}

/// The row of buttons at the foot of a column, taken out of it; null where there is none.
QLayoutItem* TakenFoot(QLayout& layout) {
    const int last = layout.count() - 1;
    const bool hasFoot = qobject_cast<QVBoxLayout*>(&layout) != nullptr && last > 0 &&
                         HoldsButtons(*layout.itemAt(last));
    return hasFoot ? layout.takeAt(last) : nullptr;
}

void AddFoot(QVBoxLayout& column, QLayoutItem* foot, QMargins margins) {
    if (QLayout* row = foot->layout()) {
        row->setParent(nullptr);
        row->setContentsMargins(margins);
        column.addLayout(row);
        return;
    }
    auto* row = new QHBoxLayout;
    row->setContentsMargins(margins);
    row->addWidget(foot->widget());
    column.addLayout(row);
    delete foot;
}

/// Puts the contents of a dialog into an area that scrolls.
void MakeScrollable(QDialog& dialog) {
    QLayout* contents = dialog.layout();
    const QMargins margins = contents->contentsMargins();
    QLayoutItem* foot = TakenFoot(*contents);
    contents->setSizeConstraint(QLayout::SetDefaultConstraint);
    auto* page = new QWidget;
    page->setLayout(contents);  // takes it away from the dialog
    auto* column = new QVBoxLayout(&dialog);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(new ScrolledPage(page), 1);
    if (foot != nullptr) {
        contents->setContentsMargins(margins.left(), margins.top(), margins.right(), 0);
        AddFoot(*column, foot, {margins.left(), 8, margins.right(), margins.bottom()});
    }
}

void Fit(QDialog& dialog) {
    QLayout* layout = dialog.layout();
    const QSize needed = NeededSize(*layout).expandedTo(dialog.minimumSize());
    if (WithinScreen(dialog, needed) == needed) {
        return;
    }
    const QSize wanted = layout->totalSizeHint().expandedTo(dialog.minimumSize());
    MakeScrollable(dialog);
    dialog.setMinimumSize(WithinScreen(dialog, dialog.minimumSize()));
    dialog.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    dialog.resize(WithinScreen(dialog, wanted));
}

}  // namespace

bool SmallScreens::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && !event->spontaneous()) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (dialog != nullptr && dialog->layout() != nullptr && dialog->isWindow() &&
            qobject_cast<QMessageBox*>(dialog) == nullptr) {
            Fit(*dialog);
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::dialogs
