#include "printing/cups/WaitDialog.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

void WaitDialog::Show(std::function<void()> cancel) {
    dialog_ = std::make_unique<QProgressDialog>(u"Warten auf den Druckdienst …"_s, u"Abbrechen"_s,
                                                0, 0, QApplication::activeWindow());
    dialog_->setObjectName(u"PrintServiceWait"_s);
    dialog_->setWindowTitle(u"Drucken"_s);
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->setMinimumDuration(0);
    QObject::connect(dialog_.get(), &QProgressDialog::canceled, dialog_.get(), std::move(cancel));
    // The hourglass of whoever asked would lie over the button.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    dialog_->show();
}

void WaitDialog::Hide() {
    QApplication::restoreOverrideCursor();
    dialog_.reset();
}

}  // namespace kadrona::printing::cups
