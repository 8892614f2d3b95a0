#include "dialogs/base/SmallScreens.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
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

bool IsLarge(const QDialog& dialog) {
    return WithinScreen(dialog, dialog.size()) != dialog.size() && !dialog.isMaximized() &&
           !dialog.isFullScreen();
}

/// The toolkit shows a dialog on at most two thirds of the screen, also where its text then has no
/// room, and its own file dialogs in the size of the last time, on whatever screen that was.
void Fit(QDialog& dialog) {
    const QSize wanted = WantedSize(dialog);
    const QSize needed = NeededSize(dialog, wanted);
    if (WithinScreen(dialog, needed) == needed) {
        if (dialog.size().boundedTo(needed) != needed || IsLarge(dialog)) {
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

constexpr const char* CentredProperty = "centred";

/// As the toolkit would do right afterwards, but every time in the same place.
void Centre(QDialog& dialog) {
    if (!dialog.testAttribute(Qt::WA_Moved) && dialog.parentWidget() != nullptr) {
        CentreOnParent(dialog);
        dialog.setProperty(CentredProperty, true);
    }
}

/// A dialog that the program itself made larger than the screen while it is shown.
void Shrink(QDialog& dialog) {
    if (dialog.isVisible() && IsLarge(dialog)) {
        dialog.resize(WithinScreen(dialog, dialog.size()));
        MoveOntoScreen(dialog);
    }
}

/// The toolkit gives the text of a box half of a small screen's width, and the box may then be
/// higher than the screen. It gets as much of the width as it needs to have room.
void Widen(QMessageBox& box) {
    constexpr int Step = 40;
    constexpr int UsualWidth = 500;
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    auto* text = box.findChild<QLabel*>(u"qt_msgbox_label"_s);
    if (grid == nullptr || text == nullptr) {
        return;
    }
    const QSize most = WithinScreen(box, {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX});
    const int usual = std::min(UsualWidth, box.screen()->availableSize().width() / 2);
    text->setWordWrap(true);  // the box decides anew when it is shown
    int width = std::max(usual, grid->totalMinimumSize().width());
    while (width < most.width() && grid->totalHeightForWidth(width) > most.height()) {
        width = std::min(width + Step, most.width());
    }
    if (width > usual) {
        const QMargins margins = grid->contentsMargins();
        grid->addItem(new QSpacerItem(width - margins.left() - margins.right(), 0),
                      grid->rowCount(), 0, 1, grid->columnCount());
    }
}

}  // namespace

bool SmallScreens::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && watched->property(CentredProperty).toBool()) {
        // The next time as well: nobody has chosen that place.
        qobject_cast<QDialog*>(watched)->setAttribute(Qt::WA_Moved, false);
    }
    const bool shows = event->type() == QEvent::Show;
    if ((shows || event->type() == QEvent::Resize) && !event->spontaneous()) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        auto* box = qobject_cast<QMessageBox*>(watched);
        if (box != nullptr && shows) {
            Widen(*box);
        } else if (box == nullptr && dialog != nullptr && dialog->layout() != nullptr &&
                   dialog->isWindow()) {
            shows ? Fit(*dialog) : Shrink(*dialog);
            if (shows) {
                Centre(*dialog);
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::dialogs
