#include "dialogs/base/SmallScreens.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "dialogs/base/ScrolledPage.h"
#include "dialogs/base/WindowPlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// What the window would like, as far as the screen has it: wrapped text is the higher the
/// narrower it is.
QSize WantedSize(const QDialog& dialog) {
    const QLayout& layout = *dialog.layout();
    QSize wanted = layout.totalSizeHint().expandedTo(dialog.minimumSize());
    if (dialog.testAttribute(Qt::WA_Resized)) {
        wanted = wanted.expandedTo(dialog.size());  // by its own choice
    }
    wanted.setWidth(WithinScreen(dialog, wanted).width());
    if (layout.hasHeightForWidth()) {
        wanted.setHeight(std::max(wanted.height(), layout.totalHeightForWidth(wanted.width())));
    }
    return wanted;
}

/// What the window cannot be smaller than, by its contents.
QSize NeededSize(const QDialog& dialog, const QSize& wanted) {
    const QLayout& layout = *dialog.layout();
    if (layout.sizeConstraint() == QLayout::SetFixedSize) {
        return layout.totalSizeHint().expandedTo(dialog.minimumSize());
    }
    QSize needed = layout.totalMinimumSize().expandedTo(dialog.minimumSize());
    if (layout.hasHeightForWidth()) {
        needed.setHeight(
            std::max(needed.height(), layout.totalMinimumHeightForWidth(wanted.width())));
    }
    return needed;
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

/// The toolkit shows a dialog on at most two thirds of the screen, also where its text then has no
/// room.
void Fit(QDialog& dialog) {
    const QSize wanted = WantedSize(dialog);
    const QSize needed = NeededSize(dialog, wanted);
    if (WithinScreen(dialog, needed) == needed) {
        if (dialog.size().boundedTo(needed) != needed) {
            dialog.resize(WithinScreen(dialog, wanted));
        }
        return;
    }
    QWidget* focus = dialog.focusWidget();
    MakeScrollable(dialog);
    if (focus != nullptr) {
        focus->setFocus();  // went with the contents
    }
    dialog.setMinimumSize(WithinScreen(dialog, dialog.minimumSize()));
    dialog.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    dialog.resize(WithinScreen(dialog, wanted));
}

/// A dialog that the program itself made larger than the screen while it is shown.
void Shrink(QDialog& dialog) {
    const QSize within = WithinScreen(dialog, dialog.size());
    if (dialog.isVisible() && within != dialog.size() && !dialog.isMaximized() &&
        !dialog.isFullScreen()) {
        dialog.resize(within);
        MoveOntoScreen(dialog);
    }
}

}  // namespace

bool SmallScreens::eventFilter(QObject* watched, QEvent* event) {
    const bool shows = event->type() == QEvent::Show;
    if ((shows || event->type() == QEvent::Resize) && !event->spontaneous()) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (dialog != nullptr && dialog->layout() != nullptr && dialog->isWindow() &&
            qobject_cast<QMessageBox*>(dialog) == nullptr) {
            shows ? Fit(*dialog) : Shrink(*dialog);
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::dialogs
