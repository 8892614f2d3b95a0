#include "dialogs/base/ScrolledPage.h"

#include <QScrollBar>

namespace kadrona::dialogs {

ScrolledPage::ScrolledPage(QWidget* page) {
    setWidget(page);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    page->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

QSize ScrolledPage::sizeHint() const {
    const QSize page = widget()->sizeHint().expandedTo(widget()->minimumSize());
    return page + QSize(verticalScrollBar()->sizeHint().width(), 0);
}

}  // namespace kadrona::dialogs
